// The entry points of the DLL.

#include <new>

#include "server/class_factory.h"
#include "server/com_headers.h"
#include "server/module.h"
#include "server/registration.h"
#include "server/type_info_cache.h"

using kesp::RegistrationScope;

// Thread notifications stay on: the C++ runtime, which is linked in, frees each thread's data on them.
extern "C" BOOL WINAPI DllMain(HINSTANCE /*instance*/, DWORD reason, LPVOID reserved) {
  // Only when the DLL is unloaded: at the end of the process the automation library may be gone already.
  if (reason == DLL_PROCESS_DETACH && reserved == nullptr) kesp::ReleaseTypeInfoCache();
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID* object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  const kesp::CreatableClass* entry = kesp::FindClass(clsid);
  if (entry == nullptr) return CLASS_E_CLASSNOTAVAILABLE;
  auto* factory = new (std::nothrow) kesp::ClassFactory(*entry);
  if (factory == nullptr) return E_OUTOFMEMORY;
  const HRESULT result = factory->QueryInterface(iid, object);
  factory->Release();
  return result;
}

STDAPI DllCanUnloadNow() {
  return kesp::ModuleIsInUse() ? S_FALSE : S_OK;
}

STDAPI DllRegisterServer() {
  return kesp::Register(RegistrationScope::kMachine);
}

STDAPI DllUnregisterServer() {
  return kesp::Unregister(RegistrationScope::kMachine);
}

// regsvr32 /i:user (with /n, so that DllRegisterServer is not called as well) registers for the present user
// only, regsvr32 /n /i for the machine. Any other text is refused.
STDAPI DllInstall(BOOL install, LPCWSTR command_line) {
  RegistrationScope scope = RegistrationScope::kMachine;
  if (command_line != nullptr && *command_line != L'\0') {
    if (lstrcmpiW(command_line, L"user") != 0) return E_INVALIDARG;
    scope = RegistrationScope::kUser;
  }
  return install ? kesp::Register(scope) : kesp::Unregister(scope);
}
