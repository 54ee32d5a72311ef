// Conversions between bytes on the wire and the texts of personality files and logs.
#include "simulator/bytes_text.h"

#include <cctype>
#include <charconv>
#include <cstdint>
#include <system_error>

namespace kesp::simulator {
namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";

std::optional<unsigned> HexDigit(char character) {
  const auto upper = static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
  const std::size_t place = std::string_view(kHexDigits).find(upper);
  if (place == std::string_view::npos) return std::nullopt;
  return static_cast<unsigned>(place);
}

std::string Escaped(char character) {
  switch (character) {
    case '\r':
      return "\\r";
    case '\n':
      return "\\n";
    case '\t':
      return "\\t";
    case '\\':
      return "\\\\";
    case '"':
      return "\\\"";
    default:
      break;
  }
  const auto byte = static_cast<std::uint8_t>(character);
  if (byte >= 0x20 && byte < 0x7F) return {character};
  return {'\\', 'x', kHexDigits[byte >> 4U], kHexDigits[byte & 0xFU]};
}

}  // namespace

std::optional<std::string> BytesFromText(std::string_view utf8) {
  std::string bytes;
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto lead = static_cast<std::uint8_t>(utf8[i]);
    if (lead < 0x80) {
      bytes.push_back(utf8[i]);
      continue;
    }
    // U+0080 to U+00FF are the two-byte forms that begin with C2 and C3.
    if ((lead != 0xC2 && lead != 0xC3) || i + 1 == utf8.size()) return std::nullopt;
    const auto trail = static_cast<std::uint8_t>(utf8[++i]);
    if ((trail & 0xC0U) != 0x80U) return std::nullopt;
    bytes.push_back(static_cast<char>(((lead & 0x03U) << 6U) | (trail & 0x3FU)));
  }
  return bytes;
}

std::optional<std::string> BytesFromHex(std::string_view hex) {
  std::string bytes;
  for (std::size_t i = 0; i < hex.size();) {
    if (hex[i] == ' ') {
      ++i;
      continue;
    }
    if (i + 1 == hex.size()) return std::nullopt;
    const std::optional<unsigned> high = HexDigit(hex[i]);
    const std::optional<unsigned> low = HexDigit(hex[i + 1]);
    if (!high || !low) return std::nullopt;
    bytes.push_back(static_cast<char>((*high << 4U) | *low));
    i += 2;
  }
  return bytes;
}

std::string Quoted(std::string_view bytes, std::size_t limit) {
  std::string text = "\"";
  for (const char character : bytes.substr(0, limit)) text += Escaped(character);
  text += bytes.size() > limit ? "...\"" : "\"";
  return text;
}

std::string Counted(std::size_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string Hexadecimal(std::uint32_t value) {
  std::string text;
  do {
    text.insert(text.begin(), "0123456789ABCDEF"[value % 16]);
    value /= 16;
  } while (value != 0);
  return text;
}

std::optional<std::uint32_t> FromHexadecimal(std::string_view text) {
  std::uint32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

}  // namespace kesp::simulator
