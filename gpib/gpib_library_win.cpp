// Loading the driver's DLL with the search order for libraries.
#include "gpib/gpib_library_win.h"

#include <windows.h>

#include <utility>

#include "support/files_win.h"

namespace kesp {

namespace {

// While it lives, a damaged file brings up no box of the system's on this thread.
class QuietLoading {
 public:
  QuietLoading() { SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &mode_); }
  ~QuietLoading() { SetThreadErrorMode(mode_, nullptr); }
  QuietLoading(const QuietLoading&) = delete;
  QuietLoading& operator=(const QuietLoading&) = delete;

 private:
  DWORD mode_ = 0;
};

// Of a file: its name and where to look for it, or its whole path and where to look for the DLLs it needs.
struct Search {
  std::wstring file;
  DWORD folders = LOAD_LIBRARY_SEARCH_DEFAULT_DIRS;
};

HMODULE LoadBy(const Search& search, DWORD flags = 0) {
  return LoadLibraryExW(search.file.c_str(), nullptr, search.folders | flags);
}

// Windows tells a file that is missing and one whose own DLLs are missing by the same number. Loading it
// without those DLLs tells the two apart; nothing of it runs.
bool IsThere(const Search& search) {
  HMODULE alone = LoadBy(search, DONT_RESOLVE_DLL_REFERENCES);
  if (alone == nullptr) return false;
  FreeLibrary(alone);
  return true;
}

}  // namespace

std::vector<std::wstring> GpibLibraryWin::FileNames() const {
  constexpr bool kIs64Bit = sizeof(void*) == 8;
  if constexpr (kIs64Bit) return {L"Gpib-32.dll", L"ni4882.dll"};
  return {L"Gpib-32.dll"};
}

std::uint32_t GpibLibraryWin::Load(const std::wstring& file_name, GpibPlace place) {
  Search search{file_name};
  if (place == GpibPlace::kFolderOfThisLibrary) {
    const std::wstring library = FilesWin().LibraryFile();
    if (library.empty()) return kGpibLibraryNotFound;
    search.file.insert(0, library, 0, library.rfind(L'\\') + 1);
    search.folders |= LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR;
  }
  const QuietLoading quiet;
  HMODULE loaded = LoadBy(search);
  if (loaded == nullptr) {
    const DWORD error = GetLastError();
    return error == kGpibLibraryNotFound && IsThere(search) ? kGpibLibraryNeedsAnother : error;
  }
  module_ = loaded;
  return 0;
}

GpibEntryPoint GpibLibraryWin::Find(const char* name) {
  return reinterpret_cast<GpibEntryPoint>(
      reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module_), name)));
}

void GpibLibraryWin::Unload() {
  FreeLibrary(static_cast<HMODULE>(std::exchange(module_, nullptr)));
}

}  // namespace kesp
