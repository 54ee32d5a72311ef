// The settings files in memory.
#include "support/settings_files_fake.h"

#include <new>

namespace kesp {

SettingsFilesFake::SettingsFilesFake() = default;

SettingsFilesFake::~SettingsFilesFake() = default;

std::wstring SettingsFilesFake::Read(const std::wstring& path, const std::wstring& section,
                                     const std::wstring& key, const std::wstring& otherwise) {
  CountCall();
  const auto found = values_.find({path, section, key});
  return found == values_.end() ? otherwise : found->second;
}

bool SettingsFilesFake::Write(const std::wstring& path, const std::wstring& section, const std::wstring& key,
                              const std::wstring& value) {
  CountCall();
  if (refusing_) return false;
  values_[{path, section, key}] = value;
  return true;
}

void SettingsFilesFake::Put(const std::wstring& path, const std::wstring& section, const std::wstring& key,
                            const std::wstring& value) {
  values_[{path, section, key}] = value;
}

std::wstring SettingsFilesFake::Value(const std::wstring& path, const std::wstring& section,
                                      const std::wstring& key) const {
  const auto found = values_.find({path, section, key});
  return found == values_.end() ? L"<none>" : found->second;
}

void SettingsFilesFake::CountCall() {
  if (++calls_ == throw_at_call_) throw std::bad_alloc();
}

}  // namespace kesp
