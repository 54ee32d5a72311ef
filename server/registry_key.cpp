// Access to the registry.
#include "server/registry_key.h"

#include "support/failure.h"

namespace kesp {

namespace {

void Check(LSTATUS status, const std::wstring& path) {
  if (status == ERROR_SUCCESS) return;
  throw Failure(HRESULT_FROM_WIN32(static_cast<unsigned long>(status)), L"KespCommObj",
                L"The registry key " + path + L" cannot be changed");
}

// Whether the key exists and has neither keys below it nor values.
bool IsEmpty(HKEY parent, const std::wstring& path) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(parent, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
  DWORD subkeys = 0;
  DWORD values = 0;
  const LSTATUS status = RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr, &values,
                                          nullptr, nullptr, nullptr, nullptr);
  RegCloseKey(key);
  return status == ERROR_SUCCESS && subkeys == 0 && values == 0;
}

}  // namespace

RegistryKey RegistryKey::Create(HKEY parent, const std::wstring& path) {
  HKEY key = nullptr;
  Check(RegCreateKeyExW(parent, path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr), path);
  return RegistryKey(key);
}

RegistryKey::~RegistryKey() {
  RegCloseKey(key_);
}

void RegistryKey::Set(const std::wstring& name, const std::wstring& value) const {
  const auto size = static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t));
  Check(RegSetValueExW(key_, name.empty() ? nullptr : name.c_str(), 0, REG_SZ,
                       reinterpret_cast<const BYTE*>(value.c_str()), size),
        name);
}

void SetKey(HKEY parent, const std::wstring& path, const std::wstring& value) {
  RegistryKey::Create(parent, path).Set({}, value);
}

std::wstring ReadKey(HKEY parent, const std::wstring& path) {
  DWORD size = 0;
  if (RegGetValueW(parent, path.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, nullptr, &size) != ERROR_SUCCESS)
    return {};
  std::wstring value(size / sizeof(wchar_t), L'\0');
  if (RegGetValueW(parent, path.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, value.data(), &size) !=
      ERROR_SUCCESS)
    return {};
  value.resize(size / sizeof(wchar_t));
  while (!value.empty() && value.back() == L'\0') value.pop_back();
  return value;
}

void RemoveTree(HKEY parent, const std::wstring& path) {
  const LSTATUS status = RegDeleteTreeW(parent, path.c_str());
  if (status != ERROR_FILE_NOT_FOUND) Check(status, path);
}

void RemoveIfEmpty(HKEY parent, const std::wstring& path) {
  if (!IsEmpty(parent, path)) return;
  // It removes no key that has keys below it. Another setup program may have made one meanwhile.
  const LSTATUS status = RegDeleteKeyExW(parent, path.c_str(), 0, 0);
  if (status == ERROR_FILE_NOT_FOUND || (status == ERROR_ACCESS_DENIED && !IsEmpty(parent, path))) return;
  Check(status, path);
}

bool KeyExists(HKEY parent, const std::wstring& path, REGSAM view) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(parent, path.c_str(), 0, KEY_READ | view, &key) != ERROR_SUCCESS) return false;
  RegCloseKey(key);
  return true;
}

}  // namespace kesp
