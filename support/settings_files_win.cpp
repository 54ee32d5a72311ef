// Settings files by GetPrivateProfileString and WritePrivateProfileString.
#include "support/settings_files_win.h"

#include <windows.h>

#include <array>

namespace kesp {

namespace {

// Windows looks for a bare name in its own folder, where these files do not belong.
bool NamesFile(const std::wstring& path) {
  return path.find(L'\\') != std::wstring::npos;
}

}  // namespace

std::wstring SettingsFilesWin::Read(const std::wstring& path, const std::wstring& section,
                                    const std::wstring& key, const std::wstring& otherwise) {
  if (!NamesFile(path)) return otherwise;
  std::array<wchar_t, 256> text{};
  const DWORD length = GetPrivateProfileStringW(section.c_str(), key.c_str(), otherwise.c_str(), text.data(),
                                                static_cast<DWORD>(text.size()), path.c_str());
  return {text.data(), length};
}

bool SettingsFilesWin::Write(const std::wstring& path, const std::wstring& section, const std::wstring& key,
                             const std::wstring& value) {
  return NamesFile(path) &&
         WritePrivateProfileStringW(section.c_str(), key.c_str(), value.c_str(), path.c_str()) != 0;
}

}  // namespace kesp
