// The clock seam: the millisecond tick counter and the local calendar.
#pragma once

#include <cstdint>
#include <string>

namespace kesp {

struct CalendarDate {
  int year = 0;
  int month = 0;  // 1 to 12
  int day = 0;    // 1 to 31

  friend bool operator==(const CalendarDate&, const CalendarDate&) = default;
};

class Clock {
 public:
  virtual ~Clock() = default;

  // The system's millisecond counter since start-up as a signed 32-bit number: it turns negative after about
  // 24.8 days and wraps after 49.7.
  virtual std::int32_t TickCount() = 0;

  // Microseconds since some fixed moment; never goes back. The tick counter of Windows steps by up to 16 ms,
  // this one by one or less.
  virtual std::int64_t Microseconds() = 0;

  // How far the present calendar second has run, 0 to 999.
  virtual int MillisecondOfSecond() = 0;

  // Today, local time.
  virtual CalendarDate Today() = 0;

  // Local date and time in the system's default date-time form (it follows the regional settings).
  virtual std::wstring DateTimeText() = 0;
};

}  // namespace kesp
