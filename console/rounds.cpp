// The moments of rounds.
#include "console/rounds.h"

namespace kesp::console {

void Rounds::AwaitNext() {
  if (interval_.count() == 0) return;
  const auto now = clock_.Now();
  next_ += interval_;
  if (next_ < now) next_ += (now - next_ + interval_ - std::chrono::microseconds(1)) / interval_ * interval_;
  if (next_ > now) clock_.Sleep(std::chrono::ceil<std::chrono::milliseconds>(next_ - now));
}

}  // namespace kesp::console
