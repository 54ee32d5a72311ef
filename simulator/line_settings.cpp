// The settings of a serial line: bit rate, data bits, parity and stop bits.
#include "simulator/line_settings.h"

namespace kesp::simulator {

std::string TextOf(const LineSettings& settings) {
  return std::to_string(settings.baud) + "," + settings.parity + "," + std::to_string(settings.data_bits) +
         "," + std::to_string(settings.stop_bits);
}

}  // namespace kesp::simulator
