// How long the line is busy with the bytes that were handed to the port.
#pragma once

#include <cstddef>
#include <cstdint>

#include "serial/line_settings.h"
#include "support/clock.h"

namespace kesp {

// Reckons when the last byte has left, from the line's settings: the start bit, data bits, parity and stop
// bits of each character. The driver's own count does not tell: with many adapters it is 0 as soon as the
// adapter has the bytes. Used by the serial transport's thread.
class Transmission {
 public:
  explicit Transmission(Clock& clock) : clock_(clock) {}

  // The port was set to that; nothing is under way.
  void Begin(const LineSettings& line);

  // So many bytes were just handed to the port.
  void Add(std::size_t bytes);

  // So many of the bytes were taken back before they got onto the line.
  void TakeBack(std::size_t bytes);

  // Nothing is under way any more: something came back, or the port is closed.
  void End() { end_microseconds_ = 0; }

  // Microseconds until the last byte has left; 0 when it has.
  std::int64_t Left() const;

 private:
  // Rounded up.
  std::int64_t MicrosecondsOf(std::size_t bytes) const;

  Clock& clock_;
  LineSettings line_;
  std::int64_t end_microseconds_ = 0;
};

}  // namespace kesp
