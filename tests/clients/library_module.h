// The library's DLL as a module of this process, found through its registration.
#pragma once

#include <string>

#include "tests/clients/automation.h"

namespace kesp::clients {

// The path that the registration of a class names.
std::wstring RegisteredPath();

// Holds the registered DLL loaded, or a copy of it, and gives its entry points.
class LibraryModule {
 public:
  explicit LibraryModule(const std::wstring& path = RegisteredPath());
  ~LibraryModule();
  LibraryModule(const LibraryModule&) = delete;
  LibraryModule& operator=(const LibraryModule&) = delete;

  HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void** object) const;
  HRESULT CanUnloadNow() const;
  HRESULT RegisterServer() const;
  HRESULT UnregisterServer() const;
  HRESULT Install(BOOL install, const wchar_t* command_line) const;

 private:
  template <class Function>
  Function Find(const char* name) const;

  HMODULE module_;
};

}  // namespace kesp::clients
