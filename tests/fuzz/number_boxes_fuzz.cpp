// The numbers of the dialogs: what keys a box takes, what its text is worth, what it becomes when it is left.
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

#include "dialogs/editing.h"
#include "dialogs/text_box.h"
#include "support/failure.h"
#include "support/user_surface_fake.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/require.h"

namespace kesp {
namespace {

bool IsAlike(double one, double other) {
  return one == other || (std::isnan(one) && std::isnan(other));
}

bool IsDigit(wchar_t c) {
  return c >= L'0' && c <= L'9';
}

// The C library's reader, which takes hexadecimal numbers, words and other blanks, too.
double ByStrtod(const std::wstring& text) {
  std::string ascii;
  std::size_t place = text.find_first_not_of(L" \t");
  for (; place < text.size(); ++place) {
    const wchar_t c = text[place];
    const bool is_of_number = IsDigit(c) || c == L'+' || c == L'-' || c == L'.' || c == L'e' || c == L'E';
    if (!is_of_number) break;
    ascii += static_cast<char>(c);
  }
  return std::strtod(ascii.c_str(), nullptr);
}

void ReadNumber(const std::wstring& text) {
  const double value = LeadingNumber(text);
  const double expected = ByStrtod(text);
  Require(IsAlike(value, expected) || (std::fabs(expected) < 1e-300 && std::fabs(value) < 1e-300),
          "a number is read as the C library reads it");
  if (!std::isfinite(value)) {
    try {
      PlainNumber(value);
      Require(false, "an infinite number is not written");
    } catch (const Failure& failure) {
      Require(failure.number() == 6, "an infinite number is an overflow");
    }
    return;
  }
  const std::wstring plain = PlainNumber(value);
  Require(LeadingNumber(plain) == value, "what was written is read again");
  Require(plain.find_first_not_of(L"-.0123456789") == std::wstring::npos, "a plain number has no exponent");
  try {
    Require(std::fabs(ToInteger16(value) - value) <= 0.5, "a whole number is the nearest one");
  } catch (const Failure&) {
    Require(value < -32768.5 || value > 32767.49, "16 bits have room");
  }
  try {
    Require(std::fabs(ToInteger32(value) - value) <= 0.5, "a whole number of 32 bits, too");
  } catch (const Failure&) {
    Require(value < -2147483648.49 || value > 2147483647.49, "32 bits have room");
  }
}

class OwnerFake : public ControlOwner {};

void LeaveBox(FuzzInput& input) {
  OwnerFake owner;
  const std::int32_t minimum = static_cast<std::int16_t>(input.Word());
  const std::int32_t maximum = minimum + static_cast<std::int32_t>(input.Below(65536));
  TextBox box(owner, 1, 0, input.Flag() ? KeyFilter::kDigits : KeyFilter::kSignedDecimal,
              NumberRange{minimum, maximum});
  box.Type(WideText(input.Rest()));
  const double typed = box.Value();
  box.SelectAll();
  Require(box.selection_start() + box.selection_length() == box.text().size(), "all is selected");
  box.Leave();
  Require(box.Value() >= minimum && box.Value() <= maximum, "a box that was left is in its range");
  const bool is_within = typed >= minimum && typed <= maximum;
  Require(!is_within || box.Value() == typed, "what was in range stays");
  const std::wstring left = box.text();
  box.Leave();
  Require(box.text() == left, "leaving twice changes nothing more");
}

void Type(FuzzInput& input) {
  UserSurfaceFake user;
  while (input.HasMore()) {
    const auto key = static_cast<std::int16_t>(input.Flag() ? input.Byte() : input.Word());
    const bool is_control = key == 3 || key == 8 || key == 13 || key == 22 || key == 24 || key == 26;
    const bool is_digit = key >= '0' && key <= '9';
    Require(FilterDigit(user, key) == (is_digit || is_control ? key : 0), "a box of digits takes digits");
    const bool is_signed = is_digit || is_control || key == '-' || key == '+' || key == '.';
    Require(FilterSignedDecimal(user, key) == (is_signed ? key : 0), "a box of numbers takes numbers");
  }
}

}  // namespace
}  // namespace kesp

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesp::FuzzInput input(data, size);
  switch (input.Below(4)) {
    case 0:
      kesp::LeaveBox(input);
      break;
    case 1:
      kesp::Type(input);
      break;
    default:
      kesp::ReadNumber(kesp::WideText(input.Rest()));
  }
  return 0;
}
