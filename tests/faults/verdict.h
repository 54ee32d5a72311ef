// What a scenario has to say about the library under a fault.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace kesp::faults {

class Verdict {
 public:
  // Whether a call succeeded. One that failed must have said so properly: by a result that is a failure, and,
  // unless memory ran out, with error information.
  bool Succeeded(HRESULT result, const char* step);
  // The same where no error information is promised: IUnknown, class factories, DISPIDs.
  bool SucceededBarely(HRESULT result, const char* step);

  void Expect(bool holds, const std::string& complaint) {
    if (!holds) complaints_.push_back(complaint);
  }

  // From then on, what does not work is the object's failing to work again, not the fault's.
  void BeginAgain() { again_ = complaints_.size(); }
  bool WorkedAgain() const { return again_ == kNever || complaints_.size() == again_; }
  const std::vector<std::string>& complaints() const { return complaints_; }
  // Whether every call so far succeeded.
  bool all_succeeded() const { return all_succeeded_; }

 private:
  static constexpr std::size_t kNever = static_cast<std::size_t>(-1);

  std::vector<std::string> complaints_;
  std::size_t again_ = kNever;
  bool all_succeeded_ = true;
};

std::string Hexadecimal(HRESULT result);

}  // namespace kesp::faults
