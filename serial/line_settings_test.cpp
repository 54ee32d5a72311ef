// Unit tests of reading the settings text of a serial port.
#include "serial/line_settings.h"

#include <gtest/gtest.h>

#include <string>

namespace kesp {
namespace {

struct Accepted {
  const wchar_t* text;
  std::int32_t rate;
  LineParity parity;
  int data_bits;
  LineStopBits stop_bits;
};

TEST(LineSettingsTest, EveryNamedValue_IsRead) {
  constexpr auto kN = LineParity::kNone;
  constexpr auto kOne = LineStopBits::kOne;
  constexpr Accepted kCases[] = {
      {L"150,N,8,1", 150, kN, 8, kOne},
      {L"300,N,8,1", 300, kN, 8, kOne},
      {L"600,N,8,1", 600, kN, 8, kOne},
      {L"1200,N,8,1", 1200, kN, 8, kOne},
      {L"2400,N,8,1", 2400, kN, 8, kOne},
      {L"4800,N,8,1", 4800, kN, 8, kOne},
      {L"9600,N,8,1", 9600, kN, 8, kOne},
      {L"19200,N,8,1", 19200, kN, 8, kOne},
      {L"38400,N,8,1", 38400, kN, 8, kOne},
      {L"57600,N,8,1", 57600, kN, 8, kOne},
      {L"115200,N,8,1", 115200, kN, 8, kOne},
      {L"230400,N,8,1", 230400, kN, 8, kOne},
      {L"460800,N,8,1", 460800, kN, 8, kOne},
      {L"921600,N,8,1", 921600, kN, 8, kOne},
      {L"9600,E,7,1", 9600, LineParity::kEven, 7, kOne},
      {L"9600,O,6,2", 9600, LineParity::kOdd, 6, LineStopBits::kTwo},
      {L"150,M,5,1.5", 150, LineParity::kMark, 5, LineStopBits::kOneAndAHalf},
      {L"9600,S,4,1", 9600, LineParity::kSpace, 4, kOne},
  };
  for (const Accepted& c : kCases) {
    const std::optional<LineSettings> read = ReadLineSettings(c.text);
    ASSERT_TRUE(read) << testing::PrintToString(c.text);
    const LineSettings expected{
        .bits_per_second = c.rate, .parity = c.parity, .data_bits = c.data_bits, .stop_bits = c.stop_bits};
    EXPECT_TRUE(*read == expected) << testing::PrintToString(c.text);
  }
}

TEST(LineSettingsTest, AnyOtherText_IsRefused) {
  for (const wchar_t* text : {L"",
                              L",",
                              L",,,",
                              L"9600",
                              L"9600,N,8",
                              L"9600,N,8,",
                              L"9600,N,8,1,",
                              L"9600,N,8,1,1",
                              L",N,8,1",
                              L"9600,,8,1",
                              L"9600,N,,1",
                              L"9601,N,8,1",
                              L"0,N,8,1",
                              L"-1,N,8,1",
                              L"09600,N,8,1",
                              L"<unknown>,N,8,1",
                              L"9600,n,8,1",
                              L"9600,X,8,1",
                              L"9600,NN,8,1",
                              L"9600,N,3,1",
                              L"9600,N,9,1",
                              L"9600,N,08,1",
                              L"9600,N,8,0",
                              L"9600,N,8,3",
                              L"9600,N,8,1.0",
                              L"9600,N,8,15",
                              L" 9600,N,8,1",
                              L"9600,N,8,1 ",
                              L"9600, N,8,1",
                              L"9600;N;8;1",
                              L"1843200,N,8,1"}) {
    EXPECT_FALSE(ReadLineSettings(text)) << testing::PrintToString(text);
  }
}

TEST(LineSettingsTest, TextWithNul_IsRefused) {
  EXPECT_FALSE(ReadLineSettings(std::wstring(L"9600,N,8,1\0", 11)));
}

}  // namespace
}  // namespace kesp
