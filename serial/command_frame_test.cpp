// Unit tests of the frames that each kind of controller expects.
#include "serial/command_frame.h"

#include <gtest/gtest.h>

#include <string>

namespace kesp {
namespace {

constexpr auto kKesp = EKespControllerStyle3::CS_KESP;
constexpr auto kOmega = EKespControllerStyle3::CS_OMEGA;
constexpr auto kMaxStream = EKespControllerStyle3::CS_MAXSTREAM;
constexpr auto kPrecidia = EKespControllerStyle3::CS_PRECIDIA;

TEST(CommandFrameTest, EveryStyle_HasItsFrame) {
  struct Case {
    EKespControllerStyle3 style;
    std::string cmd;
    std::string address;
    std::string value;
    std::string frame;
  };
  const std::string nul("a\0b", 3);
  const Case cases[] = {
      {kKesp, "*IDN?", "", "", "*IDN?\r"},
      {kKesp, "", "", "", "\r"},
      {kKesp, "t", "01", "5", "t\r"},
      {kKesp, nul, "", "", nul + "\r"},
      {kKesp, "\xE9\xFF", "", "", "\xE9\xFF\r"},
      {kMaxStream, "+++", "", "", "+++"},
      {kMaxStream, "ATSH\r", "01", "5", "ATSH\r"},
      {kMaxStream, "", "", "", ""},
      {kPrecidia, "*IDN?", "01", "5", ""},
      {static_cast<EKespControllerStyle3>(4), "*IDN?", "01", "5", ""},
      {static_cast<EKespControllerStyle3>(-1), "*IDN?", "", "", ""},
      // Of blanks only those at the ends of the whole frame go; other white space stays.
      {kKesp, "  *IDN?  ", "", "", "*IDN?  \r"},
      {kKesp, "   ", "", "", "\r"},
      {kKesp, "a  b", "", "", "a  b\r"},
      {kKesp, "\t*IDN?", "", "", "\t*IDN?\r"},
      {kMaxStream, "  +++  ", "", "", "+++"},
      {kMaxStream, "   ", "", "", ""},
      {kMaxStream, "  a\r", "", "", "a\r"},
      {kOmega, "  PV  ", "01", "",
       "\x04"
       "0011  PV  \x05\r"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(CommandFrame(c.style, c.cmd, c.address, c.value), c.frame)
        << static_cast<int>(c.style) << " " << testing::PrintToString(c.cmd);
  }
}

TEST(CommandFrameTest, OmegaAddress_FirstDigitBothDigitsSecondDigit) {
  struct Address {
    const char* address;
    const char* field;
  };
  constexpr Address kCases[] = {{"01", "0011"}, {"12", "1122"},  {"5", "55"},    {"00", "0000"},
                                {"99", "9999"}, {"123", "1122"}, {" 1", "  11"}, {"1 ", "11  "}};
  for (const Address& c : kCases) {
    EXPECT_EQ(CommandFrame(kOmega, "PV", c.address, ""), std::string("\x04") + c.field + "PV\x05\r")
        << c.address;
  }
}

TEST(CommandFrameTest, OmegaWithValue_IsAWriteRequestWithBlockCheck) {
  struct Write {
    const char* cmd;
    const char* value;
    char check;
  };
  // The checks were computed by hand: exclusive-or of the codes of command, value and ETX.
  const Write cases[] = {
      {"SL", "100", '\x2D'},  // 53 ^ 4C ^ 31 ^ 30 ^ 30 ^ 03
      {"A", "B", '\x00'},     // 41 ^ 42 ^ 03
      {"", "1", '\x32'},      // 31 ^ 03
      {"a", "A", '\x23'},     // 61 ^ 41 ^ 03
      {"\xFF", "\x7F", '\x83'},
  };
  for (const Write& c : cases) {
    const std::string expected = std::string(
                                     "\x04"
                                     "0011\x02") +
                                 c.cmd + c.value + "\x03" + std::string(1, c.check) + "\r";
    EXPECT_EQ(CommandFrame(kOmega, c.cmd, "01", c.value), expected) << c.cmd << c.value;
  }
}

TEST(CommandFrameTest, OmegaWithoutAddress_HasNoFrame) {
  EXPECT_EQ(CommandFrame(kOmega, "PV", "", ""), std::nullopt);
  EXPECT_EQ(CommandFrame(kOmega, "SL", "", "100"), std::nullopt);
}

}  // namespace
}  // namespace kesp
