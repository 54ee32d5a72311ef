// What a scenario has to say about the library, under a fault and without one.
#pragma once

#include <string>
#include <vector>

#include "tests/clients/automation.h"

namespace kesp::faults {

class Verdict {
 public:
  // Whether a call succeeded. One that failed must have said so properly: by a result that is a failure, and,
  // unless memory ran out, with error information.
  bool Succeeded(HRESULT result, const char* step);
  // The same where no error information is promised: IUnknown, class factories, DISPIDs.
  bool SucceededBarely(HRESULT result, const char* step);
  // Whether an operation succeeded and answered True. It must have answered True or False. The answer is a
  // reference so that the call itself may be the first argument.
  bool Answered(HRESULT result, const VARIANT_BOOL& answer, const char* step);

  void Expect(bool holds, const std::string& complaint) {
    if (!holds) complaints_.push_back(complaint);
  }
  // What a fault may prevent.
  void ExpectUndisturbed(bool holds, const std::string& complaint) {
    if (is_undisturbed_) Expect(holds, complaint);
  }

  // From then on no fault is an excuse: every call must succeed and answer True.
  void ExpectNoFault() { is_undisturbed_ = true; }
  bool is_undisturbed() const { return is_undisturbed_; }
  // Likewise; and what does not work is the object's failing to work again, not the fault's.
  void BeginAgain() {
    again_ = complaints_.size();
    ExpectNoFault();
  }
  bool WorkedAgain() const { return again_ == kNever || complaints_.size() == again_; }
  const std::vector<std::string>& complaints() const { return complaints_; }

 private:
  static constexpr std::size_t kNever = static_cast<std::size_t>(-1);

  std::vector<std::string> complaints_;
  std::size_t again_ = kNever;
  bool is_undisturbed_ = false;
};

std::string Hexadecimal(HRESULT result);

}  // namespace kesp::faults
