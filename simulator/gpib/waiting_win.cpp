// The lock and the clock of Windows for the simulated driver.
#include "simulator/gpib/waiting_win.h"

#include <algorithm>

#include "simulator/gpib/time_out.h"

namespace kesp::simulator::gpib {

WaitingWin::WaitingWin() {
  LARGE_INTEGER frequency{};
  QueryPerformanceFrequency(&frequency);
  ticks_per_second_ = frequency.QuadPart;
}

void WaitingWin::Lock() {
  AcquireSRWLockExclusive(&lock_);
}

void WaitingWin::Unlock() {
  ReleaseSRWLockExclusive(&lock_);
}

std::int64_t WaitingWin::Microseconds() {
  LARGE_INTEGER ticks{};
  QueryPerformanceCounter(&ticks);
  // In two steps, because the product of the whole would not fit for long.
  const std::int64_t seconds = ticks.QuadPart / ticks_per_second_;
  const std::int64_t rest = ticks.QuadPart % ticks_per_second_;
  return seconds * 1'000'000 + rest * 1'000'000 / ticks_per_second_;
}

void WaitingWin::WaitUntil(std::int64_t microseconds) {
  DWORD milliseconds = INFINITE;
  if (microseconds != kNever) {
    const std::int64_t left = std::max<std::int64_t>(0, microseconds - Microseconds());
    milliseconds = static_cast<DWORD>(std::min<std::int64_t>((left + 999) / 1000, INFINITE - 1));
  }
  SleepConditionVariableSRW(&changed_, &lock_, milliseconds, 0);
}

void WaitingWin::WakeAll() {
  WakeAllConditionVariable(&changed_);
}

}  // namespace kesp::simulator::gpib
