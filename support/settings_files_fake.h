// Settings files in memory that can be made to fail.
#pragma once

#include <map>
#include <string>
#include <tuple>

#include "support/settings_files.h"

namespace kesp {

class SettingsFilesFake final : public SettingsFiles {
 public:
  SettingsFilesFake();
  ~SettingsFilesFake() override;

  std::wstring Read(const std::wstring& path, const std::wstring& section, const std::wstring& key,
                    const std::wstring& otherwise) override;
  bool Write(const std::wstring& path, const std::wstring& section, const std::wstring& key,
             const std::wstring& value) override;

  // From now on nothing can be written.
  void RefuseWriting() { refusing_ = true; }

  // The n-th call from the fake's creation (1 is the first) throws std::bad_alloc before it does anything.
  void ThrowAtCall(int n) { throw_at_call_ = n; }

  void Put(const std::wstring& path, const std::wstring& section, const std::wstring& key,
           const std::wstring& value);

  // The text under a key; "<none>" where there is none.
  std::wstring Value(const std::wstring& path, const std::wstring& section, const std::wstring& key) const;

  int calls() const { return calls_; }

 private:
  void CountCall();

  std::map<std::tuple<std::wstring, std::wstring, std::wstring>, std::wstring> values_;
  bool refusing_ = false;
  int calls_ = 0;
  int throw_at_call_ = 0;
};

}  // namespace kesp
