// Time arithmetic and the pumping delay.
#pragma once

#include <cstdint>

#include "support/clock.h"
#include "support/message_pump.h"

namespace kesp {

// start + milliseconds as signed 32-bit numbers. Throws Overflow() when the sum does not fit, which happens
// for deadlines around the tick counter's sign change, about 24.8 days after system start.
std::int32_t Deadline(std::int32_t start, std::int32_t milliseconds);

// How many milliseconds have passed since the tick count was `start`; good for 49 days, whatever the
// counter's sign does meanwhile.
std::uint32_t MillisecondsSince(Clock& clock, std::int32_t start);

// Whether more than that many have. Throws Overflow() as Deadline does, though a deadline near the end of the
// counter's range, which no reading may ever exceed, is none that keeps it waiting.
bool IsPast(Clock& clock, std::int32_t start, std::int32_t milliseconds);

// Tells when that many milliseconds are over, counted from its creation: by the tick counter, and in truth as
// well, since the counter alone may step early.
class Wait {
 public:
  Wait(Clock& clock, std::int32_t milliseconds);

  // Throws Overflow() as Deadline does.
  bool IsOver() const;

 private:
  Clock& clock_;
  std::int32_t milliseconds_;
  std::int32_t start_tick_;
  std::int64_t start_microseconds_;
};

// Returns after at least that many milliseconds, pumping messages all the while and at least once. Does not
// sleep: a waiting call keeps one processor busy and so reacts at once. Throws Overflow() as Deadline does,
// after the first pumping.
void Delay(Clock& clock, MessagePump& pump, std::int32_t milliseconds);

// Counts calendar seconds since its creation the way a difference of two whole-second times does: it steps
// whenever a calendar second begins. So "more than 3 elapsed" is true 3 to 4 seconds after the start. It runs
// on the tick counter; setting the computer's clock meanwhile changes nothing. Good for 49 days.
class ElapsedSeconds {
 public:
  explicit ElapsedSeconds(Clock& clock);

  std::int32_t Count() const;

  // Whether Count() exceeds milliseconds / 1000 (a fraction counts: 500 ms is exceeded by 1 second).
  bool Exceeds(std::int32_t milliseconds) const;

 private:
  Clock& clock_;
  std::uint32_t start_tick_;
  std::uint32_t start_millisecond_of_second_;
};

}  // namespace kesp
