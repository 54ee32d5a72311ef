// The time-out codes of the driver and their times.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace kesp::simulator::gpib {

// A moment that never comes, and a time that never ends.
inline constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();

inline constexpr std::int32_t kTimeOutCodes = 18;

// The microseconds of a time-out code from 0 (for ever) to 17 (1000 s).
inline std::int64_t TimeOutMicroseconds(std::int32_t code) {
  static constexpr std::array<std::int64_t, kTimeOutCodes> kTimes{
      kNever,    10,         30,         100,         300,         1'000,
      3'000,     10'000,     30'000,     100'000,     300'000,     1'000'000,
      3'000'000, 10'000'000, 30'000'000, 100'000'000, 300'000'000, 1'000'000'000};
  return kTimes.at(static_cast<std::size_t>(code));
}

}  // namespace kesp::simulator::gpib
