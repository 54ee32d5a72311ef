// Help for filling in a form: which keys a number takes, what a text is worth, and the box for remarks.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "support/user_surface.h"

namespace kesp {

// The user's decimal separator, asked for once on each thread and then kept.
wchar_t DecimalSeparator(UserSurface& user);

// What becomes of a typed character, given as its code: itself when the box takes it, 0 when it is dropped.
// Backspace, Enter and Ctrl with C, V, X or Z pass both; what Ctrl+V brings is not filtered.
//
// Digits only.
std::int16_t FilterDigit(UserSurface& user, std::int16_t key);

// Digits, signs anywhere, and the decimal separator, which also stands in for a point.
std::int16_t FilterSignedDecimal(UserSurface& user, std::int16_t key);

// The number at the start of a text, blanks before it skipped: sign, digits, a decimal point, an exponent. 0
// when there is none; infinite when it is beyond all numbers.
double LeadingNumber(std::wstring_view text);

// The number in decimal, without thousands separators and without digits that add nothing: "250", "0.5".
// Throws Overflow() for an infinite one.
std::wstring PlainNumber(double number);

// The value, or the bound that it is beyond; the minimum counts when the bounds are the wrong way round.
double Clamp(double value, double minimum, double maximum);

// The number rounded to a whole one, halves to the even one. Throws Overflow() when it has no room.
std::int16_t ToInteger16(double number);
std::int32_t ToInteger32(double number);

// Shows a remark in a modal box with the information icon and an OK button, under the plain mouse pointer.
// With a help file the box also has a Help button, which opens the topic of that context number.
void ShowMessage(UserSurface& user, const std::wstring& prompt, const std::wstring& title,
                 const std::wstring& help_file = {}, std::int32_t help_context = 0);

}  // namespace kesp
