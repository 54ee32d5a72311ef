// Two digits for each byte.
#include "console/hexadecimal.h"

namespace kesp::console {

std::string HexadecimalOf(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  if (bytes.empty()) return "(nothing)";
  std::string text;
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    if (!text.empty()) text += ' ';
    text += kDigits[value >> 4U];
    text += kDigits[value & 15U];
  }
  return text;
}

}  // namespace kesp::console
