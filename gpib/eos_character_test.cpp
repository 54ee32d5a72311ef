// Unit tests of the two readings of EOSChar.
#include "gpib/eos_character.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>

#include "support/failure_fixture.h"

namespace kesp {
namespace {

TEST(EosCharacterTest, Number_IsDecimal) {
  for (const auto& [text, byte] : {std::pair<const wchar_t*, int>{L"10", 10},
                                   {L"0", 0},
                                   {L"255", 255},
                                   {L"13", 13},
                                   {L"010", 10},
                                   {L"  10 ", 10},
                                   {L"0000000000000000000000065", 65}}) {
    EXPECT_EQ(EosByteOfNumber(text, L"[source]"), byte) << text;
  }
}

TEST(EosCharacterTest, NumberOutOfRange_IsAnInvalidArgument) {
  for (const wchar_t* text : {L"256", L"300", L"2550", L"4294967306", L"99999999999999999999999999999999"}) {
    EXPECT_EQ(RaisedBy([&] { EosByteOfNumber(text, L"[source]"); }),
              (Raised{5, L"[source]",
                      std::wstring(L"Invalid procedure call or argument (EOSChar is \"") + text +
                          L"\"; codes of characters end at 255)"}));
  }
}

TEST(EosCharacterTest, NotANumber_IsATypeMismatch) {
  for (const wchar_t* text :
       {L"LF", L"   ", L"\n", L"-1", L"+10", L"1 0", L"10.5", L"1e1", L"&H0A", L"\x0661"}) {
    EXPECT_EQ(RaisedBy([&] { EosByteOfNumber(text, L"[source]"); }),
              (Raised{13, L"[source]",
                      std::wstring(L"Type mismatch (EOSChar is \"") + text +
                          L"\"; it must hold the code of a character, such as 10)"}));
  }
}

TEST(EosCharacterTest, EmptyAsNumber_IsATypeMismatch) {
  EXPECT_EQ(RaisedBy([] { EosByteOfNumber(L"", L"[source]"); }),
            (Raised{13, L"[source]",
                    L"Type mismatch (EOSChar is empty; it must hold the code of a character, such as 10)"}));
}

TEST(EosCharacterTest, FirstCharacter_IsItsByteInTheCodePage) {
  for (const auto& [text, byte] : {std::pair<const wchar_t*, int>{L"10", 49},
                                   {L"\n", 10},
                                   {L" 10", 32},
                                   {L"A", 65},
                                   {L"\u00E9x", 0xE9},
                                   {L"\u20AC", 0x80},
                                   {L"\u4E2D", '?'}}) {
    EXPECT_EQ(EosByteOfFirstCharacter(text, L"[source]"), byte) << text;
  }
  EXPECT_EQ(EosByteOfFirstCharacter(std::wstring(1, L'\0'), L"[source]"), 0);
}

TEST(EosCharacterTest, EmptyAsCharacter_IsAnInvalidArgument) {
  EXPECT_EQ(
      RaisedBy([] { EosByteOfFirstCharacter(L"", L"[source]"); }),
      (Raised{
          5, L"[source]",
          L"Invalid procedure call or argument (EOSChar is empty, so no character can end a read; set it, "
          L"or set SetEOS to False)"}));
}

}  // namespace
}  // namespace kesp
