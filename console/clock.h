// The time of day, and waiting.
#pragma once

#include <chrono>
#include <string>

namespace kesp::console {

class Clock {
 public:
  virtual ~Clock() = default;
  // Runs on evenly.
  virtual std::chrono::microseconds Now() = 0;
  // Local time as "2026-11-22T14:05:09.123".
  virtual std::string LocalTime() = 0;
  // Ends early when Ctrl-C is pressed.
  virtual void Sleep(std::chrono::milliseconds duration) = 0;
};

}  // namespace kesp::console
