// The clock that a test sets.
#include "support/clock_fake.h"

namespace kesp {

ClockFake::ClockFake() = default;

ClockFake::~ClockFake() = default;

std::int32_t ClockFake::TickCount() {
  const auto reading = static_cast<std::int32_t>(tick_);
  Advance(step_per_reading_);
  return reading;
}

std::int64_t ClockFake::Microseconds() {
  return elapsed_ms_ * 1000;
}

void ClockFake::Advance(std::uint32_t milliseconds) {
  tick_ += milliseconds;
  elapsed_ms_ += milliseconds;
  millisecond_of_second_ = (millisecond_of_second_ + milliseconds % 1000) % 1000;
}

void ClockFake::SetTickCount(std::int32_t tick) {
  elapsed_ms_ += static_cast<std::uint32_t>(tick) - tick_;
  tick_ = static_cast<std::uint32_t>(tick);
}

}  // namespace kesp
