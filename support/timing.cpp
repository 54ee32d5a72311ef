// Deadlines on the signed tick counter, the pumping delay, and calendar seconds counted on the tick counter.
#include "support/timing.h"

#include <limits>

#include "support/failure.h"

namespace kesp {

namespace {

constexpr std::int64_t kMillisecondsPerSecond = 1000;

}  // namespace

std::int32_t Deadline(std::int32_t start, std::int32_t milliseconds) {
  const std::int64_t sum = std::int64_t{start} + milliseconds;
  using Limits = std::numeric_limits<std::int32_t>;
  if (sum < Limits::min() || sum > Limits::max()) throw Overflow();
  return static_cast<std::int32_t>(sum);
}

std::uint32_t MillisecondsSince(Clock& clock, std::int32_t start) {
  return static_cast<std::uint32_t>(clock.TickCount()) - static_cast<std::uint32_t>(start);
}

bool IsPast(Clock& clock, std::int32_t start, std::int32_t milliseconds) {
  Deadline(start, milliseconds);
  return milliseconds < 0 || MillisecondsSince(clock, start) > static_cast<std::uint32_t>(milliseconds);
}

Wait::Wait(Clock& clock, std::int32_t milliseconds)
    : clock_(clock),
      milliseconds_(milliseconds),
      start_tick_(clock.TickCount()),
      start_microseconds_(clock.Microseconds()) {}

bool Wait::IsOver() const {
  Deadline(start_tick_, milliseconds_);
  if (milliseconds_ < 0) return true;
  if (MillisecondsSince(clock_, start_tick_) < static_cast<std::uint32_t>(milliseconds_)) return false;
  return clock_.Microseconds() - start_microseconds_ >= std::int64_t{milliseconds_} * 1000;
}

void Delay(Clock& clock, MessagePump& pump, std::int32_t milliseconds) {
  const Wait wait(clock, milliseconds);
  do {
    pump.PumpOnce();
  } while (!wait.IsOver());
}

ElapsedSeconds::ElapsedSeconds(Clock& clock)
    : clock_(clock),
      start_tick_(static_cast<std::uint32_t>(clock.TickCount())),
      start_millisecond_of_second_(static_cast<std::uint32_t>(clock.MillisecondOfSecond())) {}

std::int32_t ElapsedSeconds::Count() const {
  // Unsigned, so that neither the sign change nor the wrap of the counter shows in the difference.
  const std::uint32_t elapsed = static_cast<std::uint32_t>(clock_.TickCount()) - start_tick_;
  const std::int64_t since_second_began = std::int64_t{elapsed} + start_millisecond_of_second_;
  return static_cast<std::int32_t>(since_second_began / kMillisecondsPerSecond);
}

bool ElapsedSeconds::Exceeds(std::int32_t milliseconds) const {
  return Count() * kMillisecondsPerSecond > milliseconds;
}

}  // namespace kesp
