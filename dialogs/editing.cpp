// Keys, numbers and remarks of the forms.
#include "dialogs/editing.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "support/failure.h"

namespace kesp {

namespace {

// Codes of the control characters that every box takes.
constexpr std::array<std::int16_t, 6> kControlKeys = {8, 13, 24, 3, 22, 26};

// The first character of an empty separator stands for "not asked yet".
thread_local wchar_t decimal_separator = 0;

bool IsDigit(std::int32_t character) {
  return character >= L'0' && character <= L'9';
}

bool IsControlKey(std::int16_t key) {
  return std::find(kControlKeys.begin(), kControlKeys.end(), key) != kControlKeys.end();
}

std::size_t SkipDigits(std::wstring_view text, std::size_t position) {
  while (position < text.size() && IsDigit(text[position])) ++position;
  return position;
}

std::size_t SkipSign(std::wstring_view text, std::size_t position) {
  const bool sign = position < text.size() && (text[position] == L'-' || text[position] == L'+');
  return sign ? position + 1 : position;
}

// Where the number that begins at the position ends; the position itself when there is none.
std::size_t EndOfNumber(std::wstring_view text, std::size_t position) {
  const std::size_t whole = SkipSign(text, position);
  std::size_t end = SkipDigits(text, whole);
  std::size_t digits = end - whole;
  if (end < text.size() && text[end] == L'.') {
    const std::size_t fraction = SkipDigits(text, end + 1);
    digits += fraction - end - 1;
    end = fraction;
  }
  if (digits == 0) return position;
  if (end < text.size() && (text[end] == L'e' || text[end] == L'E')) {
    const std::size_t exponent = SkipSign(text, end + 1);
    const std::size_t exponent_end = SkipDigits(text, exponent);
    if (exponent_end > exponent) end = exponent_end;
  }
  return end;
}

// How many digits a number has before its decimal point; negative for zeros behind it.
std::ptrdiff_t OrderOfMagnitude(const std::string& number) {
  const std::size_t mantissa = std::min(number.find_first_of("eE"), number.size());
  const std::size_t point = std::min(number.find('.'), mantissa);
  const std::size_t first = std::min(number.find_first_not_of("-0."), mantissa);
  int exponent = 0;
  if (mantissa < number.size()) {
    const std::size_t sign = number[mantissa + 1] == '+' ? 2 : 1;
    const auto read =
        std::from_chars(number.data() + mantissa + sign, number.data() + number.size(), exponent);
    constexpr int kBeyondAll = 1'000'000;
    if (read.ec != std::errc()) exponent = number[mantissa + 1] == '-' ? -kBeyondAll : kBeyondAll;
  }
  return static_cast<std::ptrdiff_t>(point) - static_cast<std::ptrdiff_t>(first) + exponent;
}

template <typename Integer>
Integer ToInteger(double number) {
  // The default rounding mode takes halves to the even number.
  const double whole = std::nearbyint(number);
  if (!(whole >= std::numeric_limits<Integer>::min() && whole <= std::numeric_limits<Integer>::max())) {
    throw Overflow();
  }
  return static_cast<Integer>(whole);
}

}  // namespace

wchar_t DecimalSeparator(UserSurface& user) {
  if (decimal_separator == 0) decimal_separator = user.DecimalSeparator();
  return decimal_separator;
}

std::int16_t FilterDigit(UserSurface& user, std::int16_t key) {
  DecimalSeparator(user);
  return IsDigit(key) || IsControlKey(key) ? key : std::int16_t{0};
}

std::int16_t FilterSignedDecimal(UserSurface& user, std::int16_t key) {
  const auto separator = static_cast<std::int16_t>(static_cast<std::uint16_t>(DecimalSeparator(user)));
  if (IsDigit(key) || key == L'-' || key == L'+' || key == separator) return key;
  if (key == L'.') return separator;
  return IsControlKey(key) ? key : std::int16_t{0};
}

double LeadingNumber(std::wstring_view text) {
  const std::size_t start = std::min(text.find_first_not_of(L" \t"), text.size());
  const std::size_t end = EndOfNumber(text, start);
  // from_chars takes no plus sign.
  const std::size_t digits = start < end && text[start] == L'+' ? start + 1 : start;
  const std::string number(text.begin() + static_cast<std::ptrdiff_t>(digits),
                           text.begin() + static_cast<std::ptrdiff_t>(end));
  double value = 0;
  const auto read = std::from_chars(number.data(), number.data() + number.size(), value);
  if (read.ec == std::errc::result_out_of_range) {
    const double limit = OrderOfMagnitude(number) > 0 ? std::numeric_limits<double>::infinity() : 0;
    return number.front() == '-' ? -limit : limit;
  }
  return value;
}

std::wstring PlainNumber(double number) {
  if (!std::isfinite(number)) throw Overflow();
  std::array<char, 400> text{};
  // The sum has no negative zero.
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), number + 0.0, std::chars_format::fixed);
  return {text.data(), end.ptr};
}

double Clamp(double value, double minimum, double maximum) {
  if (value < minimum) return minimum;
  return value > maximum ? maximum : value;
}

std::int16_t ToInteger16(double number) {
  return ToInteger<std::int16_t>(number);
}

std::int32_t ToInteger32(double number) {
  return ToInteger<std::int32_t>(number);
}

void ShowMessage(UserSurface& user, const std::wstring& prompt, const std::wstring& title,
                 const std::wstring& help_file, std::int32_t help_context) {
  user.SetPointer(MousePointer::kDefault);
  user.ShowMessageBox(BoxWithIcon(kInformationIcon, prompt, title, help_file, help_context));
}

}  // namespace kesp
