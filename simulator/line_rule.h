// The settings of the serial line at which an instrument understands its client.
#pragma once

#include <optional>
#include <string>

#include "simulator/line_settings.h"

namespace kesp::simulator {

// What is not given suits at any setting.
struct LineRule {
  unsigned baud = 9600;
  std::optional<char> parity;
  std::optional<unsigned> data_bits;
  std::optional<unsigned> stop_bits;
};

// Whether an instrument set so understands what comes over this line, as far as the settings tell: of such
// that are not whole the data bits are not compared, and no parity and even parity count as one.
bool Suits(const LineRule& rule, const LineSettings& settings);

// The rule as "9600,E,7,1", with "-" for what is not given.
std::string TextOf(const LineRule& rule);

// What an instrument at another bit rate makes of a piece of its client's bytes, and the client of its
// answer.
extern const std::string kGarbage;

}  // namespace kesp::simulator
