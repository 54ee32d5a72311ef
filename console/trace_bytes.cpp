// From the text in a trace back to the bytes on the wire.
#include "console/trace_bytes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "console/hexadecimal.h"
#include "console/utf8_character.h"

namespace kesp::console {
namespace {

// The characters of the bytes 80 to 9F in Windows-1252; those that it leaves undefined are control
// characters.
constexpr std::array<char32_t, 32> kWindows1252 = {
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

std::optional<char> ByteOf(char32_t code) {
  if (code < 0x80 || (code >= 0xA0 && code <= 0xFF)) return static_cast<char>(code);
  const auto* place = std::find(kWindows1252.begin(), kWindows1252.end(), code);
  if (place == kWindows1252.end()) return std::nullopt;
  return static_cast<char>(0x80 + std::distance(kWindows1252.begin(), place));
}

// Of a byte past ASCII.
char32_t LetterOf(std::uint8_t byte) {
  return byte < 0xA0 ? kWindows1252[byte - 0x80U] : byte;
}

std::string Escaped(std::uint8_t byte) {
  switch (byte) {
    case '\r':
      return "\\r";
    case '\n':
      return "\\n";
    case '\t':
      return "\\t";
    case '\\':
      return "\\\\";
    default:
      break;
  }
  const char character = static_cast<char>(byte);
  return "\\x" + HexadecimalOf({&character, 1});
}

}  // namespace

std::optional<std::string> WireBytesOfUtf8(std::string_view text) {
  std::string bytes;
  while (!text.empty()) {
    const Character character = CharacterAt(text);
    const std::optional<char> byte = character.length == 0 ? std::nullopt : ByteOf(character.code);
    if (!byte) return std::nullopt;
    bytes += *byte;
    text.remove_prefix(character.length);
  }
  return bytes;
}

std::string TextOfBytes(std::string_view bytes) {
  std::string text;
  for (const char character : bytes) AppendUtf8(static_cast<std::uint8_t>(character), text);
  return text;
}

std::string Readable(std::string_view bytes) {
  std::string text;
  while (!bytes.empty()) {
    const Character character = CharacterAt(bytes);
    const char32_t code =
        character.length == 0 ? LetterOf(static_cast<std::uint8_t>(bytes[0])) : character.code;
    const bool is_control = code < 0x20 || (code >= 0x7F && code < 0xA0);
    const std::size_t length = std::max<std::size_t>(character.length, 1);
    if (character.length == 0 && !is_control) {
      AppendUtf8(code, text);
    } else if (is_control || code == '\\') {
      for (const char byte : bytes.substr(0, length)) text += Escaped(static_cast<std::uint8_t>(byte));
    } else {
      text += bytes.substr(0, length);
    }
    bytes.remove_prefix(length);
  }
  return text;
}

}  // namespace kesp::console
