// Tests of the numbers that are read from texts and written into them, and of the box for remarks.
#include "dialogs/editing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "support/failure_fixture.h"
#include "support/user_surface_fake.h"

namespace kesp {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
const Raised kOverflow{6, L"KespCommObj", L"Overflow"};

TEST(LeadingNumberTest, Texts_GiveTheNumberAtTheirStart) {
  const struct {
    std::wstring text;
    double number;
  } rows[] = {
      {L"", 0},
      {L" ", 0},
      {L"x", 0},
      {L"x7", 0},
      {L"7", 7},
      {L"7x", 7},
      {L"007", 7},
      {L"12 34", 12},
      {L"  12", 12},
      {L"\t12", 12},
      {L"\n12", 0},
      {L"-5", -5},
      {L"+3", 3},
      {L"- 5", 0},
      {L"--1", 0},
      {L"+-1", 0},
      {L"-", 0},
      {L"+", 0},
      {L".", 0},
      {L"-.", 0},
      {L".5", 0.5},
      {L"-.5", -0.5},
      {L"+.5", 0.5},
      {L"5.", 5},
      {L"1.5.2", 1.5},
      {L"1..2", 1},
      {L"1,5", 1},
      {L"1e3", 1000},
      {L"1E3", 1000},
      {L"1e+3", 1000},
      {L"1e-3", 0.001},
      {L"1.5e2x", 150},
      {L"1e", 1},
      {L"1e+", 1},
      {L"1ex", 1},
      {L"1e 3", 1},
      {L"e3", 0},
      {L".e3", 0},
      {L"0x10", 0},
      {L"&H10", 0},
      {L"inf", 0},
      {L"nan", 0},
      {L"65535", 65535},
      {L"99999999999", 99999999999.0},
      {L"1e999", kInfinity},
      {L"-1e999", -kInfinity},
      {L"+1E999", kInfinity},
      {L"1e-999", 0},
      {L"0." + std::wstring(400, L'0') + L"1", 0},
      {L"0." + std::wstring(400, L'0') + L"1e9", 0},
      {std::wstring(400, L'9') + L"e-1", kInfinity},
      {L"-" + std::wstring(400, L'9') + L".5e+1", -kInfinity},
      {L"1e99999999999", kInfinity},
      {L"1e-99999999999", 0},
      {L"-1E-999", 0},
      {L"\x0661\x0662", 0},  // Arabic digits
  };
  for (const auto& row : rows) EXPECT_EQ(LeadingNumber(row.text), row.number) << row.text;
}

TEST(LeadingNumberTest, ViewOfALongerText_StopsAtItsEnd) {
  EXPECT_EQ(LeadingNumber(std::wstring_view(L"1234").substr(0, 2)), 12);
}

TEST(PlainNumberTest, Numbers_AreWrittenInDecimalWithoutMore) {
  const struct {
    double number;
    const wchar_t* text;
  } rows[] = {
      {0, L"0"},
      {-0.0, L"0"},
      {5, L"5"},
      {250, L"250"},
      {-5, L"-5"},
      {0.5, L"0.5"},
      {-0.25, L"-0.25"},
      {0.1, L"0.1"},
      {10000, L"10000"},
      {65535, L"65535"},
      {1234567.5, L"1234567.5"},
      {2147483647, L"2147483647"},
      {1e15, L"1000000000000000"},
      {1e21, L"1000000000000000000000"},
      {1e-7, L"0.0000001"},
  };
  for (const auto& row : rows) EXPECT_EQ(PlainNumber(row.number), row.text);
}

TEST(PlainNumberTest, ExtremeNumbers_AreWrittenWhole) {
  EXPECT_EQ(PlainNumber(std::numeric_limits<double>::max()).size(), 309U);
  EXPECT_EQ(PlainNumber(-std::numeric_limits<double>::max()).size(), 310U);
  EXPECT_EQ(PlainNumber(std::numeric_limits<double>::denorm_min()), L"0." + std::wstring(323, L'0') + L"5");
  EXPECT_EQ(LeadingNumber(PlainNumber(-std::numeric_limits<double>::min())),
            -std::numeric_limits<double>::min());
}

TEST(PlainNumberTest, Infinite_RaisesOverflow) {
  for (const double number : {kInfinity, -kInfinity, std::nan("")}) {
    EXPECT_EQ(RaisedBy([&] { PlainNumber(number); }), kOverflow);
  }
}

TEST(ClampTest, Values_StayInsideTheBounds) {
  const struct {
    double value, minimum, maximum, result;
  } rows[] = {
      {11, 12, 24, 12},
      {12, 12, 24, 12},
      {18, 12, 24, 18},
      {23.5, 12, 24, 23.5},
      {24, 12, 24, 24},
      {24.01, 12, 24, 24},
      {-5, 100, 10000, 100},
      {20000, 100, 10000, 10000},
      {kInfinity, 0, 255, 255},
      {-kInfinity, 0, 255, 0},
      {7, 7, 7, 7},
      // The wrong way round: below the minimum it is the minimum, otherwise above the maximum, the maximum.
      {5, 24, 12, 24},
      {18, 24, 12, 24},
      {24, 24, 12, 12},
      {30, 24, 12, 12},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Clamp(row.value, row.minimum, row.maximum), row.result) << row.value;
  }
}

TEST(ToInteger16Test, Halves_GoToTheEvenNumber) {
  const struct {
    double number;
    std::int16_t whole;
  } rows[] = {
      {0, 0},         {0.5, 0},          {1.5, 2},         {2.5, 2},           {11.5, 12},  {12.5, 12},
      {-0.5, 0},      {-1.5, -2},        {-2.5, -2},       {2.4999, 2},        {2.5001, 3}, {-7.6, -8},
      {32767, 32767}, {32767.49, 32767}, {-32768, -32768}, {-32768.5, -32768},
  };
  for (const auto& row : rows) EXPECT_EQ(ToInteger16(row.number), row.whole) << row.number;
}

TEST(ToInteger32Test, Halves_GoToTheEvenNumber) {
  EXPECT_EQ(ToInteger32(40000.5), 40000);
  EXPECT_EQ(ToInteger32(40001.5), 40002);
  EXPECT_EQ(ToInteger32(-40001.5), -40002);
  EXPECT_EQ(ToInteger32(2147483647.49), 2147483647);
  EXPECT_EQ(ToInteger32(-2147483648.5), std::numeric_limits<std::int32_t>::min());
}

TEST(ToIntegerTest, NoRoom_RaisesOverflow) {
  for (const double number : {32767.5, 32768.0, 40000.0, -32768.51, -32769.0}) {
    EXPECT_EQ(RaisedBy([&] { ToInteger16(number); }), kOverflow) << number;
  }
  for (const double number : {2147483647.5, 2147483648.0, -2147483649.0}) {
    EXPECT_EQ(RaisedBy([&] { ToInteger32(number); }), kOverflow) << number;
  }
  for (const double number : {1e300, kInfinity, -kInfinity, std::nan("")}) {
    EXPECT_EQ(RaisedBy([&] { ToInteger16(number); }), kOverflow) << number;
    EXPECT_EQ(RaisedBy([&] { ToInteger32(number); }), kOverflow) << number;
  }
}

TEST(ShowMessageTest, HelpFile_AddsAHelpButtonForItsTopic) {
  UserSurfaceFake user;
  ShowMessage(user, L"Enter the RF channel.", L"Invalid RF Channel", L"", 7);
  ShowMessage(user, L"A", L"B", L"C:\\kesp.hlp", 7);
  EXPECT_EQ(user.TakeBoxes(), (Boxes{Remark(L"Invalid RF Channel", L"Enter the RF channel."),
                                     {L"A", L"B", 16448, L"C:\\kesp.hlp", 7}}));
}

TEST(ShowMessageTest, BusyPointer_IsTheDefaultOneUnderTheBoxAndAfterIt) {
  UserSurfaceFake user;
  user.SetPointer(MousePointer::kBusy);
  ShowMessage(user, L"A", L"B");
  EXPECT_EQ(user.pointer_under_boxes(), std::vector{MousePointer::kDefault});
  EXPECT_EQ(user.pointer(), MousePointer::kDefault);
}

}  // namespace
}  // namespace kesp
