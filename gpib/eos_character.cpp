// EOSChar as a decimal number and as a character.
#include "gpib/eos_character.h"

#include <algorithm>

#include "support/failure.h"
#include "support/text.h"
#include "support/text_edit.h"

namespace kesp {

namespace {

constexpr std::uint32_t kHighestByte = 255;

bool IsDigit(wchar_t c) {
  return c >= L'0' && c <= L'9';
}

// The standard text of a run-time failure, followed by what it was about.
Failure Detailed(const Failure& failure, const wchar_t* source, const std::wstring& detail) {
  return {failure.number(), source, failure.description() + L" (EOSChar " + detail + L")"};
}

}  // namespace

std::uint8_t EosByteOfNumber(const std::wstring& text, const wchar_t* source) {
  if (text.empty()) {
    throw Detailed(TypeMismatch(), source, L"is empty; it must hold the code of a character, such as 10");
  }
  const std::wstring digits = Trim(text);
  if (digits.empty() || !std::all_of(digits.begin(), digits.end(), IsDigit)) {
    throw Detailed(TypeMismatch(), source,
                   L"is \"" + text + L"\"; it must hold the code of a character, such as 10");
  }
  std::uint32_t number = 0;
  for (wchar_t c : digits) {
    // Held down, so that any number of digits can follow.
    if (number <= kHighestByte) number = number * 10 + static_cast<std::uint32_t>(c - L'0');
  }
  if (number > kHighestByte) {
    throw Detailed(InvalidCall(), source, L"is \"" + text + L"\"; codes of characters end at 255");
  }
  return static_cast<std::uint8_t>(number);
}

std::uint8_t EosByteOfFirstCharacter(const std::wstring& text, const wchar_t* source) {
  if (text.empty()) {
    throw Detailed(InvalidCall(), source,
                   L"is empty, so no character can end a read; set it, or set SetEOS to False");
  }
  return static_cast<std::uint8_t>(SystemCodePage().ToBytes(text.substr(0, 1)).front());
}

}  // namespace kesp
