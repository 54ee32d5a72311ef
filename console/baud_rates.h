// The bit rates that the library knows.
#pragma once

#include <array>

namespace kesp::console {

// In the order of EKespBaudRate3, whose first rate is number 0.
inline constexpr std::array<int, 14> kBaudRates = {150,   300,   600,   1200,   2400,   4800,   9600,
                                                   19200, 38400, 57600, 115200, 230400, 460800, 921600};

// The number of a rate, or -1 where it is none of these.
constexpr int BaudRateNumber(int rate) {
  for (std::size_t number = 0; number < kBaudRates.size(); ++number)
    if (kBaudRates[number] == rate) return static_cast<int>(number);
  return -1;
}

}  // namespace kesp::console
