// Doing something again and again, without drifting away from the clock.
#pragma once

#include <chrono>

#include "console/clock.h"

namespace kesp::console {

// The moments at which rounds begin: the first at once, each further one a whole number of intervals later.
// After a round that took longer the moments that have passed are left out.
class Rounds {
 public:
  Rounds(Clock& clock, std::chrono::milliseconds interval)
      : clock_(clock), interval_(interval), next_(clock.Now()) {}

  // Waits until the next round is to begin; less after Ctrl-C.
  void AwaitNext();

 private:
  Clock& clock_;
  std::chrono::microseconds interval_;
  std::chrono::microseconds next_;
};

}  // namespace kesp::console
