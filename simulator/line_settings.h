// The settings of a serial line: bit rate, data bits, parity and stop bits.
#pragma once

#include <string>

namespace kesp::simulator {

// parity is one of N, E, O, M and S.
struct LineSettings {
  unsigned baud = 9600;
  char parity = 'N';
  unsigned data_bits = 8;
  unsigned stop_bits = 1;
  // Whether even parity and the number of data bits are known (see SettingsOf).
  bool whole = true;

  bool operator==(const LineSettings&) const = default;
};

// The settings as "9600,N,8,1".
std::string TextOf(const LineSettings& settings);

// Linux only: the present settings of a terminal, given by its open descriptor; the bit rate in bits a
// second, whether it is a usual one or not. A pseudo-terminal by itself keeps the bit rate, the stop bits and
// whether parity is odd, mark or space; it always has eight data bits, and even parity looks like none. The
// settings are whole when its user set it through a preloaded library that keeps them (character_frame.h).
// Throws std::system_error.
LineSettings SettingsOf(int descriptor);

}  // namespace kesp::simulator
