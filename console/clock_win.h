// The system's clock.
#pragma once

#include "console/clock.h"
#include "console/interruption_win.h"

namespace kesp::console {

class ClockWin : public Clock {
 public:
  explicit ClockWin(Interruption& interruption) : interruption_(interruption) {}

  std::chrono::microseconds Now() override;
  std::string LocalTime() override;
  // Works off the messages of this thread meanwhile: it is an apartment, and has the library's windows.
  void Sleep(std::chrono::milliseconds duration) override;

 private:
  Interruption& interruption_;
};

}  // namespace kesp::console
