// The controller with block checks: frames in, replies out.
#include "simulator/omega_controller.h"

#include <gtest/gtest.h>

namespace kesp::simulator {
namespace {

constexpr char kEot[] = "\x04";
constexpr char kAck[] = "\x06\r\n";
constexpr char kNak[] = "\x15\r\n";
constexpr char kUnknown[] = "\x04\r\n";

std::string Read(const std::string& address, const std::string& command) {
  return kEot + address + command + "\x05";
}

std::string Write(const std::string& address, const std::string& text) {
  const std::string block = text + "\x03";
  return kEot + address + "\x02" + block + BlockCheck(block);
}

std::string Value(const std::string& text) {
  const std::string block = text + "\x03";
  return "\x02" + block + BlockCheck(block) + "\r\n";
}

class OmegaControllerTest : public testing::Test {
 protected:
  std::string Ask(const std::string& bytes) { return device_.Take(bytes, Moment(0)).bytes; }

  OmegaController device_{"12", {{"PV", "0021.5"}, {"SL", "100"}}, {9600, 'E', 7, 1}};
};

TEST(BlockCheck, Bytes_AreCombinedByExclusiveOr) {
  EXPECT_EQ(BlockCheck("\x03"), '\x03');
  EXPECT_EQ(BlockCheck("PV\x03"), 'P' ^ 'V' ^ 3);
}

TEST_F(OmegaControllerTest, Read_AnswersWithTheValueAndItsCheck) {
  // 50 ^ 56 ^ 30 ^ 30 ^ 32 ^ 31 ^ 2E ^ 35 ^ 03, hexadecimal.
  EXPECT_EQ(Ask("\x04\x31\x31\x32\x32PV\x05"), "\x02PV0021.5\x03\x1D\r\n");
}

TEST_F(OmegaControllerTest, CarriageReturnsAfterFrames_AreSwallowed) {
  EXPECT_EQ(Ask(Read("1122", "PV") + "\r" + Write("1122", "SL5") + "\r" + Read("1122", "SL") + "\r"),
            Value("PV0021.5") + kAck + Value("SL5"));
}

TEST_F(OmegaControllerTest, BytesOneByOne_AreTheSame) {
  std::string reply;
  for (const char byte : Read("1122", "SL")) reply += Ask(std::string(1, byte));
  EXPECT_EQ(reply, Value("SL100"));
}

TEST_F(OmegaControllerTest, OtherAddress_IsSilent) {
  EXPECT_EQ(Ask(Read("1111", "PV") + Write("2211", "SL1") + Read("12", "PV") + Read("", "PV")), "");
  EXPECT_EQ(Ask(Read("1122", "SL")), Value("SL100"));
}

TEST_F(OmegaControllerTest, UnknownCommand_IsEot) {
  EXPECT_EQ(Ask(Read("1122", "XX")), kUnknown);
  EXPECT_EQ(Ask(Write("1122", "XX1")), kUnknown);
}

TEST_F(OmegaControllerTest, Write_StoresTheValue) {
  EXPECT_EQ(Ask(Write("1122", "SL-12.50")), kAck);
  EXPECT_EQ(Ask(Read("1122", "SL")), Value("SL-12.50"));
}

TEST_F(OmegaControllerTest, WrongCheck_IsNakAndStoresNothing) {
  std::string frame = Write("1122", "SL7");
  frame.back() = static_cast<char>(frame.back() ^ 1);
  EXPECT_EQ(Ask(frame), kNak);
  EXPECT_EQ(Ask(Read("1122", "SL")), Value("SL100"));
}

// 53 ^ 4C ^ 03 is 1C; a value of two bytes makes the check any byte that is wanted.
TEST_F(OmegaControllerTest, CheckThatLooksLikeAControlByte_IsACheck) {
  for (const char wanted : {'\r', '\x04', '\x05', '\x02', '\x03', '\x00'}) {
    const std::string value{'0', static_cast<char>('0' ^ 0x1C ^ wanted)};
    const std::string frame = Write("1122", "SL" + value);
    ASSERT_EQ(frame.back(), wanted);
    EXPECT_EQ(Ask(frame + "\r"), kAck) << int{wanted};
    EXPECT_EQ(Ask(Read("1122", "SL")), Value("SL" + value));
  }
}

TEST_F(OmegaControllerTest, Noise_IsPassedOverAndTheNextFrameCounts) {
  EXPECT_EQ(Ask("\r\nPV\x05\x02\x03\x03"), "");
  EXPECT_EQ(Ask(std::string(kEot) + "11" + Read("1122", "SL")), Value("SL100"));
  EXPECT_EQ(Ask(kEot + std::string(1000, 'x') + "\x05"), "");
  EXPECT_EQ(Ask(std::string(kEot) + "1122SL\x03\x03" + Read("1122", "SL")), Value("SL100"));
}

TEST_F(OmegaControllerTest, Line_IsItsOwn) {
  ASSERT_TRUE(device_.Line());
  EXPECT_EQ(TextOf(*device_.Line()), "9600,E,7,1");
}

}  // namespace
}  // namespace kesp::simulator
