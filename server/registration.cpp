// Registration for the machine or for one user, and its removal.
#include "server/registration.h"

#include <string>
#include <vector>

#include "KespCommObj.h"
#include "server/class_table.h"
#include "server/error_bridge.h"
#include "server/registry_key.h"
#include "support/environment_win.h"
#include "support/paths.h"

namespace kesp {

namespace {

constexpr wchar_t kClasses[] = L"Software\\Classes\\";
constexpr wchar_t kLibraryName[] = L"Kesp Communication Object Library";
constexpr wchar_t kLibraryVersion[] = L"1.0";
// The application that the classes are of, for the system's surrogate process and for DCOM.
constexpr wchar_t kApplication[] = L"{b11edd6c-6e7c-4198-acee-833c0be5cd41}";
// The automation library's own marshaler, which reads the type library.
constexpr wchar_t kTypeLibraryMarshaler[] = L"{00020424-0000-0000-C000-000000000046}";
constexpr wchar_t kDispatchMarshaler[] = L"{00020420-0000-0000-C000-000000000046}";

constexpr bool kIs64Bit = sizeof(void*) == 8;
constexpr const wchar_t* kPlatform = kIs64Bit ? L"win64" : L"win32";
constexpr const wchar_t* kOtherPlatform = kIs64Bit ? L"win32" : L"win64";
constexpr REGSAM kOtherView = kIs64Bit ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;

struct InterfaceEntry {
  const IID& iid;
  const wchar_t* name;
  const wchar_t* marshaler;
};

const InterfaceEntry kInterfaces[] = {
    {__uuidof(::_CKespCommObj), L"_CKespCommObj", kTypeLibraryMarshaler},
    {__uuidof(::_CKespCOMPort3), L"_CKespCOMPort3", kTypeLibraryMarshaler},
    {__uuidof(::_CKespTCP), L"_CKespTCP", kTypeLibraryMarshaler},
    {__uuidof(::_CKespIEEE), L"_CKespIEEE", kTypeLibraryMarshaler},
    {__uuidof(::_CInstrument), L"_CInstrument", kTypeLibraryMarshaler},
    {__uuidof(::_CInstruments), L"_CInstruments", kTypeLibraryMarshaler},
    {__uuidof(::_CKespSmartSwitch3), L"_CKespSmartSwitch3", kTypeLibraryMarshaler},
    {__uuidof(::__CKespCOMPort3), L"__CKespCOMPort3", kDispatchMarshaler},
    {__uuidof(::__CKespTCP), L"__CKespTCP", kDispatchMarshaler},
    {__uuidof(::__CKespIEEE), L"__CKespIEEE", kDispatchMarshaler},
};

HKEY RootOf(RegistrationScope scope) {
  return scope == RegistrationScope::kMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

std::wstring GuidText(REFGUID guid) {
  wchar_t text[40] = L"";
  StringFromGUID2(guid, text, static_cast<int>(std::size(text)));
  return text;
}

std::wstring ClassKey(REFCLSID clsid) {
  return kClasses + (L"CLSID\\" + GuidText(clsid));
}
std::wstring InterfaceKey(REFIID iid) {
  return kClasses + (L"Interface\\" + GuidText(iid));
}
std::wstring LibraryKey() {
  return kClasses + (L"TypeLib\\" + GuidText(LIBID_KespCommObj));
}
std::wstring ApplicationKey() {
  return std::wstring(kClasses) + L"AppID\\" + kApplication;
}
std::wstring ProgId(const CreatableClass& entry) {
  return std::wstring(L"KespCommObj.") + entry.name;
}

void RegisterClassEntry(HKEY root, const CreatableClass& entry, const std::wstring& path) {
  const std::wstring key = ClassKey(entry.clsid);
  SetKey(root, key, entry.description);
  const RegistryKey server = RegistryKey::Create(root, key + L"\\InprocServer32");
  server.Set({}, path);
  server.Set(L"ThreadingModel", L"Apartment");
  SetKey(root, key + L"\\ProgID", ProgId(entry) + L".1");
  SetKey(root, key + L"\\VersionIndependentProgID", ProgId(entry));
  SetKey(root, key + L"\\TypeLib", GuidText(LIBID_KespCommObj));
  SetKey(root, key + L"\\Version", kLibraryVersion);
  SetKey(root, key + L"\\Programmable", {});
}

void RegisterProgId(HKEY root, const CreatableClass& entry) {
  const std::wstring key = kClasses + ProgId(entry);
  SetKey(root, key, entry.description);
  SetKey(root, key + L"\\CLSID", GuidText(entry.clsid));
  SetKey(root, key + L"\\CurVer", ProgId(entry) + L".1");
  SetKey(root, key + L".1", entry.description);
  SetKey(root, key + L".1\\CLSID", GuidText(entry.clsid));
}

void RegisterInterface(HKEY root, const InterfaceEntry& entry) {
  const std::wstring key = InterfaceKey(entry.iid);
  SetKey(root, key, entry.name);
  SetKey(root, key + L"\\ProxyStubClsid32", entry.marshaler);
  const RegistryKey library = RegistryKey::Create(root, key + L"\\TypeLib");
  library.Set({}, GuidText(LIBID_KespCommObj));
  library.Set(L"Version", kLibraryVersion);
}

std::wstring VersionKey() {
  return LibraryKey() + L"\\" + kLibraryVersion;
}

// Where the help file lies that the type library names. Each width has one; the last registration counts.
void SetHelpFolderBeside(HKEY root, const std::wstring& path) {
  std::wstring folder = FolderOfPath(path);
  if (!folder.empty()) folder.pop_back();
  SetKey(root, VersionKey() + L"\\HELPDIR", folder);
}

void RegisterLibrary(HKEY root, const std::wstring& path) {
  const std::wstring version = VersionKey();
  SetKey(root, version, kLibraryName);
  SetKey(root, version + L"\\0\\" + kPlatform, path);
  SetKey(root, version + L"\\FLAGS", L"0");
  SetHelpFolderBeside(root, path);
}

void RegisterAll(HKEY root) {
  const std::wstring path = SystemEnvironment().files.LibraryFile();
  RegisterLibrary(root, path);
  for (const InterfaceEntry& entry : kInterfaces) RegisterInterface(root, entry);
  for (const auto* entry = begin_classes(); entry != end_classes(); ++entry) {
    RegisterClassEntry(root, *entry, path);
    RegisterProgId(root, *entry);
  }
}

// An empty DllSurrogate is the system's own surrogate process.
void RegisterSurrogate(HKEY root) {
  const RegistryKey application = RegistryKey::Create(root, ApplicationKey());
  application.Set({}, kLibraryName);
  application.Set(L"DllSurrogate", {});
  for (const auto* entry = begin_classes(); entry != end_classes(); ++entry) {
    RegistryKey::Create(root, ClassKey(entry->clsid)).Set(L"AppID", kApplication);
  }
}

void UnregisterLibrary(HKEY root) {
  const std::wstring version = VersionKey();
  RemoveTree(root, version + L"\\0\\" + kPlatform);
  RemoveIfEmpty(root, version + L"\\0");
  if (!KeyExists(root, version + L"\\0")) RemoveTree(root, version);
  const std::wstring other = ReadKey(root, version + L"\\0\\" + kOtherPlatform);
  if (!other.empty()) SetHelpFolderBeside(root, other);
  RemoveIfEmpty(root, LibraryKey());
}

void UnregisterAll(HKEY root) {
  for (const auto* entry = begin_classes(); entry != end_classes(); ++entry) {
    RemoveTree(root, ClassKey(entry->clsid));
    // ProgIDs belong to both bitnesses; where there is only one view of the registry the key is gone by now.
    if (KeyExists(root, ClassKey(entry->clsid), kOtherView)) continue;
    RemoveTree(root, kClasses + ProgId(*entry));
    RemoveTree(root, kClasses + ProgId(*entry) + L".1");
  }
  for (const InterfaceEntry& entry : kInterfaces) RemoveTree(root, InterfaceKey(entry.iid));
  UnregisterLibrary(root);
  // It belongs to both bitnesses, too.
  if (!KeyExists(root, ClassKey(begin_classes()->clsid), kOtherView)) RemoveTree(root, ApplicationKey());
}

}  // namespace

HRESULT Register(RegistrationScope scope, Hosting hosting) noexcept {
  try {
    RegisterAll(RootOf(scope));
    if (hosting == Hosting::kSurrogateToo) RegisterSurrogate(RootOf(scope));
    return S_OK;
  } catch (...) {
    const HRESULT result = ReportException(IID_NULL);
    Unregister(scope);
    return result;
  }
}

HRESULT Unregister(RegistrationScope scope) noexcept {
  try {
    UnregisterAll(RootOf(scope));
    // A user who has no classes of his own otherwise is left without these, as before.
    if (scope == RegistrationScope::kUser) {
      for (const wchar_t* key : {L"AppID", L"CLSID", L"Interface", L"TypeLib"}) {
        RemoveIfEmpty(RootOf(scope), std::wstring(kClasses) + key);
      }
    }
    return S_OK;
  } catch (...) {
    return ReportException(IID_NULL);
  }
}

}  // namespace kesp
