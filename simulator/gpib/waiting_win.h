// The lock and the clock of Windows for the simulated driver.
#pragma once

#include <windows.h>

#include "simulator/gpib/waiting.h"

namespace kesp::simulator::gpib {

// Made of what needs neither the C++ library's threads nor the loader, because a thread that ends takes the
// lock, too.
class WaitingWin final : public Waiting {
 public:
  WaitingWin();

  void Lock() override;
  void Unlock() override;
  std::int64_t Microseconds() override;
  // Windows counts in milliseconds, so that it may return a millisecond late.
  void WaitUntil(std::int64_t microseconds) override;
  void WakeAll() override;

 private:
  SRWLOCK lock_ = SRWLOCK_INIT;
  CONDITION_VARIABLE changed_ = CONDITION_VARIABLE_INIT;
  std::int64_t ticks_per_second_ = 1;
};

}  // namespace kesp::simulator::gpib
