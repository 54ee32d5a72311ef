// How long something may take altogether.
#pragma once

#include <chrono>
#include <optional>

#include "console/clock.h"

namespace kesp::console {

class Deadline {
 public:
  // Never, without a time.
  Deadline(Clock& clock, std::optional<int> milliseconds) : clock_(clock) {
    if (milliseconds) end_ = clock.Now() + std::chrono::milliseconds(*milliseconds);
  }
  bool IsPast() const { return end_ && clock_.Now() >= *end_; }

 private:
  Clock& clock_;
  std::optional<std::chrono::microseconds> end_;
};

}  // namespace kesp::console
