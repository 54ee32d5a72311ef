// Conversion between text and bytes by a single-byte code page, and the table of Windows-1252.
#include "support/text.h"

#include <algorithm>
#include <bitset>

namespace kesp {

namespace {

// A code unit as a number; wchar_t is signed on some systems.
std::uint32_t Unit(wchar_t unit) {
  return static_cast<std::uint32_t>(unit) & (sizeof(wchar_t) == 2 ? 0xFFFFU : 0xFFFFFFFFU);
}

bool IsHighSurrogate(std::uint32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLowSurrogate(std::uint32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}
bool IsSurrogate(std::uint32_t unit) {
  return unit >= 0xD800 && unit <= 0xDFFF;
}

std::array<char16_t, 256> Windows1252Characters() {
  // Bytes 0x80 to 0x9F; all others are the characters of the same number. 0: undefined.
  constexpr std::array<char16_t, 32> kUpperControls = {
      0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  // 80 to 87
      0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,       // 88 to 8F
      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  // 90 to 97
      0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178,  // 98 to 9F
  };
  std::array<char16_t, 256> characters{};
  for (std::size_t byte = 0; byte < characters.size(); ++byte) {
    characters[byte] = static_cast<char16_t>(byte);
  }
  for (std::size_t i = 0; i < kUpperControls.size(); ++i) characters[0x80 + i] = kUpperControls[i];
  return characters;
}

}  // namespace

CodePage::CodePage(const std::array<char16_t, 256>& characters) {
  // First the bytes that have a character, so that no stand-in takes one that a later byte needs.
  std::bitset<256> assigned;
  for (std::size_t byte = 0; byte < characters.size(); ++byte) {
    const char16_t character = characters[byte];
    const bool defined = (character != 0 || byte == 0) && !IsSurrogate(character);
    if (!defined || (byte > 0 && Has(character))) continue;
    Assign(byte, character);
    assigned.set(byte);
  }
  for (std::size_t byte = 0; byte < characters.size(); ++byte) {
    if (!assigned.test(byte)) Assign(byte, StandIn(byte));
  }
}

bool CodePage::Has(std::uint32_t character) const {
  return character < bytes_.size() && characters_[bytes_[character]] == character;
}

void CodePage::Assign(std::size_t byte, std::uint32_t character) {
  characters_[byte] = static_cast<char16_t>(character);
  bytes_[character] = static_cast<std::uint8_t>(byte);
}

std::uint32_t CodePage::StandIn(std::size_t byte) const {
  auto character = static_cast<std::uint32_t>(byte);
  if (byte >= 0x80 && !Has(character)) return character;
  character += 0xF700;
  while (Has(character)) ++character;
  return character;
}

std::wstring CodePage::FromBytes(std::string_view bytes) const {
  std::wstring text(bytes.size(), L'\0');
  std::transform(bytes.begin(), bytes.end(), text.begin(), [this](char byte) {
    return static_cast<wchar_t>(characters_[static_cast<std::uint8_t>(byte)]);
  });
  return text;
}

std::string CodePage::ToBytes(std::wstring_view text) const {
  std::string bytes;
  Convert(text, bytes);
  return bytes;
}

std::optional<std::string> CodePage::ToExactBytes(std::wstring_view text) const {
  std::string bytes;
  if (!Convert(text, bytes)) return std::nullopt;
  return bytes;
}

// Returns whether every character had a byte.
bool CodePage::Convert(std::wstring_view text, std::string& bytes) const {
  bytes.assign(text.size(), '?');
  bool exact = true;
  auto byte = bytes.begin();
  for (std::size_t i = 0; i < text.size(); ++i, ++byte) {
    const std::uint32_t unit = Unit(text[i]);
    if (Has(unit)) {
      *byte = static_cast<char>(bytes_[unit]);
      continue;
    }
    exact = false;
    const bool pair = IsHighSurrogate(unit) && i + 1 < text.size() && IsLowSurrogate(Unit(text[i + 1]));
    if (pair) ++i;
  }
  bytes.erase(byte, bytes.end());
  return exact;
}

const CodePage& Windows1252() {
  static const CodePage page(Windows1252Characters());
  return page;
}

}  // namespace kesp
