// Loading the driver's DLL with the search order for libraries.
#include "gpib/gpib_library_win.h"

#include <windows.h>

namespace kesp {

std::vector<std::wstring> GpibLibraryWin::FileNames() const {
  constexpr bool kIs64Bit = sizeof(void*) == 8;
  if constexpr (kIs64Bit) return {L"Gpib-32.dll", L"ni4882.dll"};
  return {L"Gpib-32.dll"};
}

std::uint32_t GpibLibraryWin::Load(const std::wstring& file_name) {
  // One that lacked an entry point. Its file may have been replaced since, but while it is loaded the system
  // hands it out again.
  if (module_ != nullptr) FreeLibrary(static_cast<HMODULE>(module_));
  module_ = nullptr;
  // A damaged file must not bring up a box of the system's.
  DWORD mode = 0;
  SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &mode);
  HMODULE loaded = LoadLibraryExW(file_name.c_str(), nullptr, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
  const DWORD error = loaded == nullptr ? GetLastError() : ERROR_SUCCESS;
  SetThreadErrorMode(mode, nullptr);
  if (loaded == nullptr) return error != ERROR_SUCCESS ? error : ERROR_GEN_FAILURE;
  module_ = loaded;
  return 0;
}

GpibEntryPoint GpibLibraryWin::Find(const char* name) {
  return reinterpret_cast<GpibEntryPoint>(
      reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module_), name)));
}

}  // namespace kesp
