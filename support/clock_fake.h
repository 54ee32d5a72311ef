// A clock that a test sets.
#pragma once

#include <cstdint>
#include <string>

#include "support/clock.h"

namespace kesp {

// Time stands still unless the test advances it or has each reading of the tick count advance it.
class ClockFake : public Clock {
 public:
  // Returns the tick count as it stands, then advances by the step.
  std::int32_t TickCount() override {
    const auto reading = static_cast<std::int32_t>(tick_);
    Advance(step_per_reading_);
    return reading;
  }
  std::int64_t Microseconds() override { return elapsed_ms_ * 1000; }
  int MillisecondOfSecond() override { return static_cast<int>(millisecond_of_second_); }
  CalendarDate Today() override { return today_; }
  std::wstring DateTimeText() override { return date_time_text_; }

  // Moves the tick count, which wraps as the real one, and the millisecond of the second alike. The day and
  // the date text stay.
  void Advance(std::uint32_t milliseconds) {
    tick_ += milliseconds;
    elapsed_ms_ += milliseconds;
    millisecond_of_second_ = (millisecond_of_second_ + milliseconds % 1000) % 1000;
  }

  // Forwards, as far as need be past the counter's wrap.
  void SetTickCount(std::int32_t tick) {
    elapsed_ms_ += static_cast<std::uint32_t>(tick) - tick_;
    tick_ = static_cast<std::uint32_t>(tick);
  }
  // The tick count goes this far ahead of true time, as a counter that steps does.
  void LetTickCountRunAhead(std::uint32_t milliseconds) { tick_ += milliseconds; }
  void SetMillisecondOfSecond(std::uint32_t millisecond) { millisecond_of_second_ = millisecond; }
  void SetStepPerReading(std::uint32_t milliseconds) { step_per_reading_ = milliseconds; }
  void SetToday(const CalendarDate& today) { today_ = today; }
  void SetDateTimeText(const std::wstring& text) { date_time_text_ = text; }

  // The tick count without the step.
  std::int32_t tick() const { return static_cast<std::int32_t>(tick_); }

 private:
  std::uint32_t tick_ = 1'000'000;
  std::int64_t elapsed_ms_ = 0;
  std::uint32_t millisecond_of_second_ = 0;
  std::uint32_t step_per_reading_ = 0;
  CalendarDate today_{2024, 5, 17};
  std::wstring date_time_text_ = L"17/05/2024 12:34:56";
};

}  // namespace kesp
