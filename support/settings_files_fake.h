// Settings files in memory that can be made to fail.
#pragma once

#include <map>
#include <new>
#include <string>
#include <tuple>

#include "support/settings_files.h"

namespace kesp {

class SettingsFilesFake final : public SettingsFiles {
 public:
  std::wstring Read(const std::wstring& path, const std::wstring& section, const std::wstring& key,
                    const std::wstring& otherwise) override {
    CountCall();
    const auto found = values_.find({path, section, key});
    return found == values_.end() ? otherwise : found->second;
  }
  bool Write(const std::wstring& path, const std::wstring& section, const std::wstring& key,
             const std::wstring& value) override {
    CountCall();
    if (!refusing_) Put(path, section, key, value);
    return !refusing_;
  }

  // From now on nothing can be written.
  void RefuseWriting() { refusing_ = true; }

  // The n-th call from the fake's creation (1 is the first) throws std::bad_alloc before it does anything.
  void ThrowAtCall(int n) { throw_at_call_ = n; }

  void Put(const std::wstring& path, const std::wstring& section, const std::wstring& key,
           const std::wstring& value) {
    values_[{path, section, key}] = value;
  }

  // The text under a key; "<none>" where there is none.
  std::wstring Value(const std::wstring& path, const std::wstring& section, const std::wstring& key) const {
    const auto found = values_.find({path, section, key});
    return found == values_.end() ? L"<none>" : found->second;
  }

  int calls() const { return calls_; }

 private:
  void CountCall() {
    if (++calls_ == throw_at_call_) throw std::bad_alloc();
  }

  std::map<std::tuple<std::wstring, std::wstring, std::wstring>, std::wstring> values_;
  bool refusing_ = false;
  int calls_ = 0;
  int throw_at_call_ = 0;
};

}  // namespace kesp
