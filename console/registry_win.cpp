// The registry, by the functions of Windows.
#include "console/registry_win.h"

#include <array>

#include "console/wide_text_win.h"

namespace kesp::console {
namespace {

constexpr DWORD kLongestText = 8192;

std::string TextOf(HKEY key, const wchar_t* name) {
  std::wstring text(kLongestText, L'\0');
  DWORD size = kLongestText * sizeof(wchar_t);
  if (RegGetValueW(key, nullptr, name, RRF_RT_REG_SZ, nullptr, text.data(), &size) != ERROR_SUCCESS)
    return "";
  return ToUtf8(text.c_str());
}

}  // namespace

REGSAM ViewOf(int bits) {
  return bits == 64 ? KEY_WOW64_64KEY : KEY_WOW64_32KEY;
}

RegistryKeyWin::RegistryKeyWin(HKEY root, const std::string& path, REGSAM view) {
  if (RegOpenKeyExW(root, ToWide(path).c_str(), 0, KEY_READ | view, &key_) != ERROR_SUCCESS) key_ = nullptr;
}

RegistryKeyWin::~RegistryKeyWin() {
  if (key_ != nullptr) RegCloseKey(key_);
}

std::string RegistryKeyWin::Text(const char* name) const {
  return Exists() ? TextOf(key_, name == nullptr ? nullptr : ToWide(name).c_str()) : "";
}

std::optional<std::uint32_t> RegistryKeyWin::Number(const char* name) const {
  DWORD number = 0;
  DWORD size = sizeof number;
  if (!Exists() || RegGetValueW(key_, nullptr, ToWide(name).c_str(), RRF_RT_REG_DWORD, nullptr, &number,
                                &size) != ERROR_SUCCESS)
    return std::nullopt;
  return number;
}

std::vector<std::string> RegistryKeyWin::Texts() const {
  std::vector<std::string> texts;
  std::array<wchar_t, 16384> name{};
  for (DWORD i = 0; Exists(); ++i) {
    auto length = static_cast<DWORD>(name.size());
    if (RegEnumValueW(key_, i, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
      break;
    texts.push_back(TextOf(key_, name.data()));
  }
  return texts;
}

}  // namespace kesp::console
