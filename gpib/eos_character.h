// The two readings of the text EOSChar.
#pragma once

#include <cstdint>
#include <string>

namespace kesp {

// The byte that ends a command: the decimal number that the text holds, so "10" means a line feed. Blanks
// around it do not count. Throws, with this source, number 13 (type mismatch) when the text is no whole
// decimal number (an empty one is none) and number 5 (invalid argument) when the number is not 0 to 255.
std::uint8_t EosByteOfNumber(const std::wstring& text, const wchar_t* source);

// The byte that ends a read: that of the text's first character in the system's code page, so "10" means the
// character "1", 49. Throws number 5 (invalid argument) with this source when the text is empty.
std::uint8_t EosByteOfFirstCharacter(const std::wstring& text, const wchar_t* source);

}  // namespace kesp
