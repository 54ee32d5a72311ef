// The entry points of the DLL.

#include <new>

#include "server/class_factory.h"
#include "server/com_headers.h"
#include "server/module.h"
#include "server/registration.h"
#include "server/type_info_cache.h"

using kesp::Hosting;
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
// only, regsvr32 /n /i for the machine. /i:surrogate also lets the system's surrogate process load the
// library; not for one user, because Windows reads the entries of such applications from the machine's alone.
// Any other text is refused.
STDAPI DllInstall(BOOL install, LPCWSTR command_line) {
  struct Command {
    const wchar_t* text;
    RegistrationScope scope;
    Hosting hosting;
  };
  constexpr Command kCommands[] = {
      {L"", RegistrationScope::kMachine, Hosting::kInProcess},
      {L"user", RegistrationScope::kUser, Hosting::kInProcess},
      {L"surrogate", RegistrationScope::kMachine, Hosting::kSurrogateToo},
  };
  for (const Command& command : kCommands) {
    if (lstrcmpiW(command_line != nullptr ? command_line : L"", command.text) != 0) continue;
    return install ? kesp::Register(command.scope, command.hosting) : kesp::Unregister(command.scope);
  }
  return E_INVALIDARG;
}
