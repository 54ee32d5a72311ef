// Settings files in memory that can be made to fail.
#pragma once

#include <map>
#include <new>
#include <string>
#include <tuple>

#include "support/failing_call_fake.h"
#include "support/settings_files.h"

namespace kesp {

class SettingsFilesFake final : public SettingsFiles {
 public:
  std::wstring Read(const std::wstring& path, const std::wstring& section, const std::wstring& key,
                    const std::wstring& otherwise) override {
    if (Fails()) return otherwise;
    const auto found = values_.find({path, section, key});
    return found == values_.end() ? otherwise : found->second;
  }
  bool Write(const std::wstring& path, const std::wstring& section, const std::wstring& key,
             const std::wstring& value) override {
    if (Fails() || refusing_) return false;
    Put(path, section, key, value);
    return true;
  }

  // From now on nothing can be written.
  void RefuseWriting() { refusing_ = true; }

  // A failing call does nothing and throws std::bad_alloc or, with answers_failure, fails as its contract
  // says.
  FailingCallFake faults;
  bool answers_failure = false;

  void Put(const std::wstring& path, const std::wstring& section, const std::wstring& key,
           const std::wstring& value) {
    values_[{path, section, key}] = value;
  }

  // The text under a key; "<none>" where there is none.
  std::wstring Value(const std::wstring& path, const std::wstring& section, const std::wstring& key) const {
    const auto found = values_.find({path, section, key});
    return found == values_.end() ? L"<none>" : found->second;
  }

 private:
  // Counts a call.
  bool Fails() {
    if (!faults.IsFailing()) return false;
    if (!answers_failure) throw std::bad_alloc();
    return true;
  }

  std::map<std::tuple<std::wstring, std::wstring, std::wstring>, std::wstring> values_;
  bool refusing_ = false;
};

}  // namespace kesp
