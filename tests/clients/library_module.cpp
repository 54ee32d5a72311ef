// Loading the DLL and calling what it exports.
#include "tests/clients/library_module.h"

#include <gtest/gtest.h>

#include <array>

#include "KespCommObj.h"

namespace kesp::clients {

std::wstring RegisteredPath() {
  std::array<wchar_t, 40> clsid{};
  StringFromGUID2(__uuidof(CKespCommObj), clsid.data(), static_cast<int>(clsid.size()));
  const std::wstring key = L"CLSID\\" + std::wstring(clsid.data()) + L"\\InprocServer32";
  std::array<wchar_t, 1024> path{};
  DWORD size = sizeof path;
  EXPECT_EQ(RegGetValueW(HKEY_CLASSES_ROOT, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, path.data(), &size),
            ERROR_SUCCESS)
      << "the library is not registered";
  return path.data();
}

LibraryModule::LibraryModule(const std::wstring& path) : module_(LoadLibraryW(path.c_str())) {
  EXPECT_NE(module_, nullptr);
}

LibraryModule::~LibraryModule() {
  FreeLibrary(module_);
}

template <class Function>
Function LibraryModule::Find(const char* name) const {
  const FARPROC found = GetProcAddress(module_, name);
  EXPECT_NE(found, nullptr) << name;
  // Through a pointer to nothing in particular: the compiler distrusts a cast between function types.
  return reinterpret_cast<Function>(reinterpret_cast<void*>(found));
}

HRESULT LibraryModule::GetClassObject(REFCLSID clsid, REFIID iid, void** object) const {
  return Find<decltype(&::DllGetClassObject)>("DllGetClassObject")(clsid, iid, object);
}

HRESULT LibraryModule::CanUnloadNow() const {
  return Find<decltype(&::DllCanUnloadNow)>("DllCanUnloadNow")();
}

HRESULT LibraryModule::RegisterServer() const {
  return Find<HRESULT(STDAPICALLTYPE*)()>("DllRegisterServer")();
}

HRESULT LibraryModule::UnregisterServer() const {
  return Find<HRESULT(STDAPICALLTYPE*)()>("DllUnregisterServer")();
}

HRESULT LibraryModule::Install(BOOL install, const wchar_t* command_line) const {
  return Find<HRESULT(STDAPICALLTYPE*)(BOOL, LPCWSTR)>("DllInstall")(install, command_line);
}

}  // namespace kesp::clients
