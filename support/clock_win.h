// The clock of the system.
#pragma once

#include "support/clock.h"

namespace kesp {

class ClockWin final : public Clock {
 public:
  // Windows' GetTickCount.
  std::int32_t TickCount() override;

  // Windows' performance counter.
  std::int64_t Microseconds() override;

  int MillisecondOfSecond() override;
  CalendarDate Today() override;

  // The user's short date and time of day, with a blank between them.
  std::wstring DateTimeText() override;
};

}  // namespace kesp
