// A registry key that is open for writing.
#pragma once

#include <string>

#include "server/com_headers.h"

namespace kesp {

// Owns the handle. Operations throw Failure with the system's error as an HRESULT.
class RegistryKey {
 public:
  // Opens a key below `parent`, made when missing.
  static RegistryKey Create(HKEY parent, const std::wstring& path);
  ~RegistryKey();
  RegistryKey(const RegistryKey&) = delete;
  RegistryKey& operator=(const RegistryKey&) = delete;

  // Sets a text value; an empty name is the key's default value.
  void Set(const std::wstring& name, const std::wstring& value) const;

 private:
  explicit RegistryKey(HKEY key) : key_(key) {}

  HKEY key_;
};

// Sets the default value of a key, made when missing.
void SetKey(HKEY parent, const std::wstring& path, const std::wstring& value);

// The default value of a key; empty where it has none, or does not exist.
std::wstring ReadKey(HKEY parent, const std::wstring& path);

// Removes a key with everything below it; nothing happens when there is none.
void RemoveTree(HKEY parent, const std::wstring& path);

// Removes a key that has neither keys below it nor values; nothing happens when it has some, or does not
// exist. A key that another program makes below it at that moment is never removed along with it.
void RemoveIfEmpty(HKEY parent, const std::wstring& path);

// Whether there is such a key in the registry's view of programs of this (or with KEY_WOW64_32KEY or
// KEY_WOW64_64KEY that) bitness.
bool KeyExists(HKEY parent, const std::wstring& path, REGSAM view = 0);

}  // namespace kesp
