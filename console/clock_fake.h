// A clock that stands still, except while somebody waits.
#pragma once

#include <functional>
#include <vector>

#include "console/clock.h"

namespace kesp::console {

class ClockFake : public Clock {
 public:
  std::chrono::microseconds Now() override { return elapsed_; }
  // 2026-11-22T14:05:09.000 at first.
  std::string LocalTime() override;
  // Time has passed at once.
  void Sleep(std::chrono::milliseconds duration) override;

  void Advance(std::chrono::microseconds duration) { elapsed_ += duration; }

  std::vector<std::chrono::milliseconds> sleeps;
  std::function<void()> on_sleep;  // at the end of each Sleep: to press Ctrl-C, for example

 private:
  std::chrono::microseconds elapsed_{};
};

}  // namespace kesp::console
