// The calls of a fake, counted, of which a test lets one fail.
#pragma once

namespace kesp {

enum class FaultLength { kOneCall, kFromThenOn };

// A fake asks it at each call of an operation that can fail.
class FailingCallFake {
 public:
  // The nth call from now on (1 is the next) fails, with kFromThenOn all behind it, too. 0: none does.
  void Fail(int nth, FaultLength length = FaultLength::kOneCall) {
    failing_ = nth == 0 ? 0 : calls_ + nth;
    length_ = length;
  }

  // Counts a call. Whether it is to fail.
  bool IsFailing() {
    ++calls_;
    const bool fails =
        failing_ != 0 && (length_ == FaultLength::kOneCall ? calls_ == failing_ : calls_ >= failing_);
    if (fails) ++failures_;
    return fails;
  }

  // So far.
  int calls() const { return calls_; }
  int failures() const { return failures_; }

  // Whether the call that is to fail has yet to come.
  bool IsPending() const { return calls_ < failing_; }

 private:
  int calls_ = 0;
  int failures_ = 0;
  int failing_ = 0;
  FaultLength length_ = FaultLength::kOneCall;
};

}  // namespace kesp
