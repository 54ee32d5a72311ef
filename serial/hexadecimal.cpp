// Hexadecimal texts to numbers and back.
#include "serial/hexadecimal.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "support/failure.h"

namespace kesp {

namespace {

constexpr std::wstring_view kDigits = L"0123456789ABCDEF";
constexpr std::size_t kLongest = 8;

std::wstring Digits(std::uint32_t number) {
  std::wstring digits;
  do {
    digits.insert(digits.begin(), kDigits[number % 16]);
    number /= 16;
  } while (number != 0);
  return digits;
}

std::int64_t ValueOf(wchar_t digit) {
  const bool small = digit >= L'a' && digit <= L'f';
  const std::size_t value = kDigits.find(small ? static_cast<wchar_t>(digit - L'a' + L'A') : digit);
  if (value == std::wstring_view::npos) throw TypeMismatch();
  return static_cast<std::int64_t>(value);
}

}  // namespace

std::wstring ToHexadecimal(std::int16_t number) {
  return Digits(static_cast<std::uint16_t>(number));
}

std::wstring ToHexadecimal(double number) {
  const double whole = std::nearbyint(number);
  if (!(whole >= 0 && whole <= std::numeric_limits<std::uint32_t>::max())) throw Overflow();
  return Digits(static_cast<std::uint32_t>(whole));
}

std::int64_t FromHexadecimal(const std::wstring& text) {
  if (text.empty() || text.size() > kLongest) throw TypeMismatch();
  std::int64_t number = 0;
  for (const wchar_t digit : text) number = number * 16 + ValueOf(digit);
  return number;
}

}  // namespace kesp
