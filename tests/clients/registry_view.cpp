// Reading the registry.
#include "tests/clients/registry_view.h"

#include <array>

namespace kesp::clients {

namespace {

HKEY RootOf(Hive hive) {
  return hive == Hive::kMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

class OpenKey {
 public:
  OpenKey(HKEY root, const std::wstring& path) {
    if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &key_) != ERROR_SUCCESS) key_ = nullptr;
  }
  ~OpenKey() {
    if (key_ != nullptr) RegCloseKey(key_);
  }
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;

  bool Exists() const { return key_ != nullptr; }

  std::set<std::wstring> Keys() const {
    std::set<std::wstring> names;
    std::array<wchar_t, 256> name{};
    for (DWORD i = 0; key_ != nullptr; ++i) {
      DWORD length = name.size();
      if (RegEnumKeyExW(key_, i, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
        break;
      names.insert(std::wstring(name.data(), length));
    }
    return names;
  }

  std::map<std::wstring, std::wstring> Values() const {
    std::map<std::wstring, std::wstring> values;
    std::array<wchar_t, 256> name{};
    std::array<wchar_t, 1024> text{};
    for (DWORD i = 0; key_ != nullptr; ++i) {
      DWORD length = name.size();
      DWORD size = sizeof text;
      DWORD type = 0;
      if (RegEnumValueW(key_, i, name.data(), &length, nullptr, &type, reinterpret_cast<BYTE*>(text.data()),
                        &size) != ERROR_SUCCESS) {
        break;
      }
      values[name.data()] = type == REG_SZ ? text.data() : L"type " + std::to_wstring(type);
    }
    return values;
  }

 private:
  HKEY key_ = nullptr;
};

void Collect(HKEY root, const std::wstring& path, const std::wstring& shown,
             std::map<std::wstring, std::wstring>& found) {
  const OpenKey key(root, path);
  if (!key.Exists()) return;
  found.emplace(shown, L"");
  for (const auto& [name, text] : key.Values()) found[name.empty() ? shown : shown + L"\\" + name] = text;
  for (const std::wstring& name : key.Keys()) Collect(root, path + L"\\" + name, shown + L"\\" + name, found);
}

}  // namespace

std::set<std::wstring> RegisteredNames(Hive hive) {
  const std::wstring folders[] = {L"", L"\\CLSID", L"\\Interface", L"\\TypeLib"};
  std::set<std::wstring> names;
  for (const std::wstring& folder : folders) {
    for (const std::wstring& name : OpenKey(RootOf(hive), L"Software\\Classes" + folder).Keys()) {
      names.insert(folder + L"\\" + name);
    }
  }
  // The folders belong to all libraries: the first one of a user to be registered makes them.
  for (const std::wstring& folder : folders) names.erase(folder);
  return names;
}

std::map<std::wstring, std::wstring> ValuesBelow(Hive hive, const std::wstring& key) {
  std::map<std::wstring, std::wstring> found;
  Collect(RootOf(hive), L"Software\\Classes\\" + key, key, found);
  return found;
}

std::wstring GuidText(REFGUID guid) {
  std::array<wchar_t, 40> text{};
  StringFromGUID2(guid, text.data(), static_cast<int>(text.size()));
  return text.data();
}

}  // namespace kesp::clients
