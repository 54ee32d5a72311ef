// Unit tests of hexadecimal texts.
#include "serial/hexadecimal.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/failure.h"
#include "support/failure_fixture.h"

namespace kesp {
namespace {

constexpr std::int32_t kOverflow = 6;
constexpr std::int32_t kTypeMismatch = 13;

TEST(HexadecimalTest, SixteenBitNumber_IsUpperCaseWithoutPrefixOrLeadingZeros) {
  struct Case {
    std::int16_t number;
    const wchar_t* text;
  };
  constexpr Case kCases[] = {{0, L"0"},       {9, L"9"},        {10, L"A"},    {12, L"C"},
                             {15, L"F"},      {16, L"10"},      {26, L"1A"},   {255, L"FF"},
                             {4096, L"1000"}, {32767, L"7FFF"}, {-1, L"FFFF"}, {-32768, L"8000"}};
  for (const Case& c : kCases) EXPECT_EQ(ToHexadecimal(c.number), c.text) << c.number;
}

TEST(HexadecimalTest, Double_IsRoundedToTheNearestWholeNumberHalvesToTheEvenOne) {
  struct Case {
    double number;
    const wchar_t* text;
  };
  constexpr Case kCases[] = {{0, L"0"},
                             {12, L"C"},
                             {11.6, L"C"},
                             {12.4, L"C"},
                             {12.5, L"C"},
                             {13.5, L"E"},
                             {0.5, L"0"},
                             {0.51, L"1"},
                             {-0.4, L"0"},
                             {15, L"F"},
                             {65535, L"FFFF"},
                             {43981, L"ABCD"},
                             {4294967295.0, L"FFFFFFFF"},
                             {4294967295.4, L"FFFFFFFF"}};
  for (const Case& c : kCases) EXPECT_EQ(ToHexadecimal(c.number), c.text) << c.number;
}

TEST(HexadecimalTest, DoubleWithoutThirtyTwoBitForm_Overflows) {
  for (const double number :
       {-0.6, -1.0, 4294967295.6, 4294967296.0, 1e300, std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(RaisedBy([&] { ToHexadecimal(number); }).number, kOverflow) << number;
  }
}

TEST(HexadecimalTest, DigitsOfEitherCase_AreRead) {
  struct Case {
    const wchar_t* text;
    std::int64_t number;
  };
  constexpr Case kCases[] = {{L"0", 0},
                             {L"F", 15},
                             {L"f", 15},
                             {L"1A", 26},
                             {L"aBcD", 43981},
                             {L"3332", 13106},
                             {L"00000010", 16},
                             {L"9", 9},
                             {L"7FFF", 32767},
                             {L"FFFF", 65535},
                             {L"FFFFFFFF", 4294967295}};
  for (const Case& c : kCases) EXPECT_EQ(FromHexadecimal(c.text), c.number) << testing::PrintToString(c.text);
}

TEST(HexadecimalTest, AnyOtherText_IsATypeMismatch) {
  for (const wchar_t* text : {L"", L"G", L"g", L"@", L"`", L" 1", L"1 ", L"&H1", L"0x1", L"-1", L"1.5", L"/",
                              L":", L"000000001", L"OK"}) {
    EXPECT_EQ(RaisedBy([&] { FromHexadecimal(text); }).number, kTypeMismatch) << testing::PrintToString(text);
  }
}

}  // namespace
}  // namespace kesp
