// The clock of the system: tick counter, local calendar, and its text by the user's regional settings.
#include "support/clock_win.h"

#include <windows.h>

#include <array>

namespace kesp {

namespace {

SYSTEMTIME LocalTime() {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  return now;
}

// Longer than any form that the regional settings hold (80 characters each).
using Buffer = std::array<wchar_t, 256>;

}  // namespace

std::int32_t ClockWin::TickCount() {
  return static_cast<std::int32_t>(GetTickCount());
}

std::int64_t ClockWin::Microseconds() {
  constexpr std::int64_t kMicrosecondsPerSecond = 1'000'000;
  static const std::int64_t ticks_per_second = [] {
    LARGE_INTEGER frequency{};
    QueryPerformanceFrequency(&frequency);
    return frequency.QuadPart;
  }();
  LARGE_INTEGER now{};
  QueryPerformanceCounter(&now);
  // In two parts: the product of the whole would not fit after some days.
  return now.QuadPart / ticks_per_second * kMicrosecondsPerSecond +
         now.QuadPart % ticks_per_second * kMicrosecondsPerSecond / ticks_per_second;
}

int ClockWin::MillisecondOfSecond() {
  // Every time zone is whole minutes away from universal time, and asking for that is many times faster.
  constexpr std::uint64_t kUnitsPerMillisecond = 10'000;  // of 100 ns
  FILETIME now{};
  GetSystemTimeAsFileTime(&now);
  const std::uint64_t units = (std::uint64_t{now.dwHighDateTime} << 32) | now.dwLowDateTime;
  return static_cast<int>(units / kUnitsPerMillisecond % 1000);
}

CalendarDate ClockWin::Today() {
  const SYSTEMTIME now = LocalTime();
  return {now.wYear, now.wMonth, now.wDay};
}

std::wstring ClockWin::DateTimeText() {
  const SYSTEMTIME now = LocalTime();
  Buffer date{};
  GetDateFormatW(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &now, nullptr, date.data(),
                 static_cast<int>(date.size()));
  Buffer time{};
  GetTimeFormatW(LOCALE_USER_DEFAULT, 0, &now, nullptr, time.data(), static_cast<int>(time.size()));
  return std::wstring(date.data()) + L" " + time.data();
}

}  // namespace kesp
