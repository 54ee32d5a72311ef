// Numbers as a radio modem writes them: upper-case hexadecimal digits without prefix or leading zeros.
#pragma once

#include <cstdint>
#include <string>

namespace kesp {

// A negative 16-bit number stands for the address with the same bits: -1 is FFFF.
std::wstring ToHexadecimal(std::int16_t number);

// Rounded to the nearest whole number, halves to the even one. Throws Overflow() outside 0 to 4294967295.
std::wstring ToHexadecimal(double number);

// Throws TypeMismatch() for a text that is not one to eight hexadecimal digits of either case.
std::int64_t FromHexadecimal(const std::wstring& text);

}  // namespace kesp
