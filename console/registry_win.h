// Reading the registry.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kesp::console {

// The view of programs of that width, in a Windows of 64 bit.
REGSAM ViewOf(int bits);

// An open key, or none: then everything is missing from it. Texts are UTF-8.
class RegistryKeyWin {
 public:
  // view: KEY_WOW64_64KEY or KEY_WOW64_32KEY; 0: that of this program.
  RegistryKeyWin(HKEY root, const std::string& path, REGSAM view = 0);
  // Takes over an open key; INVALID_HANDLE_VALUE for none.
  explicit RegistryKeyWin(HKEY open) : key_(open == INVALID_HANDLE_VALUE ? nullptr : open) {}
  ~RegistryKeyWin();
  RegistryKeyWin(const RegistryKeyWin&) = delete;
  RegistryKeyWin& operator=(const RegistryKeyWin&) = delete;

  bool Exists() const { return key_ != nullptr; }
  // Empty where there is none. Names of variables are replaced by their values. No name: the key's own value.
  std::string Text(const char* name = nullptr) const;
  std::optional<std::uint32_t> Number(const char* name) const;
  // The texts of all values.
  std::vector<std::string> Texts() const;

 private:
  HKEY key_ = nullptr;
};

}  // namespace kesp::console
