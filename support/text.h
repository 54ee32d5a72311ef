// The one place that turns text into the bytes on the wire and back.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kesp {

// A single-byte code page in which each of the 256 bytes has a character of its own, so that every byte
// survives the way to text and back unchanged. It is immutable, owns nothing, and takes about 64 KB: keep one
// for good rather than making it for each use.
class CodePage {
 public:
  // characters[b] is the character of byte b, or 0 for a byte (other than 0) that the code page leaves
  // undefined. Undefined bytes, and bytes whose character an earlier byte has already, are given a character
  // that no byte has: U+0080 to U+00FF of the same number where it is free, else U+F700 plus the byte (or the
  // next private-use character that is free). Half of a surrogate pair counts as undefined.
  explicit CodePage(const std::array<char16_t, 256>& characters);

  // Each byte as its character.
  std::wstring FromBytes(std::string_view bytes) const;

  // Each character as its byte. A character without a byte becomes "?" (one, also for a surrogate pair);
  // nothing else changes, NULs included.
  std::string ToBytes(std::wstring_view text) const;

  // As ToBytes, but empty when a character has no byte.
  std::optional<std::string> ToExactBytes(std::wstring_view text) const;

 private:
  bool Has(std::uint32_t character) const;
  void Assign(std::size_t byte, std::uint32_t character);
  std::uint32_t StandIn(std::size_t byte) const;
  bool Convert(std::wstring_view text, std::string& bytes) const;

  std::array<char16_t, 256> characters_{};
  // The byte of each character. The entry of a character without a byte is 0, as is that of byte 0's own:
  // characters_ tells the two apart.
  std::array<std::uint8_t, 0x10000> bytes_{};
};

// Windows-1252 (Western European), as published in the Unicode consortium's mapping table CP1252.TXT.
const CodePage& Windows1252();

// The system's ANSI code page when it is a single-byte one, otherwise (UTF-8, Japanese, Chinese, Korean)
// Windows-1252. In the native build always Windows-1252.
const CodePage& SystemCodePage();

}  // namespace kesp
