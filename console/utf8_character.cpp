// Characters of UTF-8, as RFC 3629 has it.
#include "console/utf8_character.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace kesp::console {

bool BeginsCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}

std::size_t CharactersIn(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), BeginsCharacter));
}

Character CharacterAt(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
  const std::uint8_t lead = byte(0);
  if (lead < 0x80) return {lead, 1};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return {};
  char32_t code = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0U) != 0x80U) return {};
    code = code << 6U | (byte(i) & 0x3FU);
  }
  constexpr std::array<char32_t, 5> kLeast = {0, 0, 0x80, 0x800, 0x10000};
  const bool is_surrogate = code >= 0xD800 && code <= 0xDFFF;
  if (code < kLeast[length] || code > 0x10FFFF || is_surrogate) return {};
  return {code, length};
}

void AppendUtf8(char32_t code, std::string& text) {
  if (code < 0x80) {
    text += static_cast<char>(code);
    return;
  }
  if (code < 0x800) {
    text += static_cast<char>(0xC0U | code >> 6U);
  } else {
    text += static_cast<char>(0xE0U | code >> 12U);
    text += static_cast<char>(0x80U | (code >> 6U & 0x3FU));
  }
  text += static_cast<char>(0x80U | (code & 0x3FU));
}

}  // namespace kesp::console
