// The controller with block checks: frames in, replies out.
#include "simulator/omega_controller.h"

#include <gtest/gtest.h>

#include "simulator/device_scenes.h"

namespace kesp::simulator {
namespace {

constexpr char kDescription[] =
    R"({"device": "omega", "address": "12", "values": {"PV": "0021.5", "SL": "100"})";

std::string Checked(const std::string& text) {
  const std::string block = text + "\x03";
  return "\x02" + block + BlockCheck(block);
}
std::string Read(const std::string& address, const std::string& command) {
  return "\x04" + address + command + "\x05";
}
std::string Write(const std::string& address, const std::string& text) {
  return "\x04" + address + Checked(text);
}
std::string Value(const std::string& text) {
  return Checked(text) + "\r\n";
}

TEST(OmegaController, Frames_AreAnsweredAsDescribed) {
  const std::string ack = "\x06\r\n";
  const std::string unknown = "\x04\r\n";
  std::string wrong = Write("1122", "SL7");
  wrong.back() = static_cast<char>(wrong.back() ^ 1);
  Perform(std::string(kDescription) + "}",
          {// 50 ^ 56 ^ 30 ^ 30 ^ 32 ^ 31 ^ 2E ^ 35 ^ 03, hexadecimal.
           {0, "\x04\x31\x31\x32\x32PV\x05", "\x02PV0021.5\x03\x1D\r\n"},
           {0, Read("1122", "PV") + "\r" + Write("1122", "SL-5") + "\r" + Read("1122", "SL") + "\r",
            Value("PV0021.5") + ack + Value("SL-5")},
           {0,
            "\x04"
            "11",
            ""},
           {0, "22SL", ""},
           {0, "\x05", Value("SL-5")},
           {0, Read("1111", "PV") + Write("2211", "SL1") + Read("12", "PV") + Read("", "PV"), ""},
           {0, Read("1122", "XX") + Write("1122", "XX1"), unknown + unknown},
           {0, wrong + Read("1122", "SL"), "\x15\r\n" + Value("SL-5")},
           // Noise, a frame that is cut off by the next one, one that is too long, one without STX.
           {0, "\r\nPV\x05\x02\x03\x03", ""},
           {0,
            "\x04"
            "11" +
                Read("1122", "SL"),
            Value("SL-5")},
           {0, "\x04" + std::string(1000, 'x') + "\x05", ""},
           {0,
            "\x04"
            "1122SL\x03\x03" +
                Read("1122", "SL"),
            Value("SL-5")}});
}

// 53 ^ 4C ^ 03 is 1C; a value of two bytes makes the check any byte that is wanted.
TEST(OmegaController, CheckThatLooksLikeAControlByte_IsACheck) {
  const auto device = DeviceOf(ReadDescription(std::string(kDescription) + "}", "d"));
  for (const char wanted : {'\r', '\x04', '\x05', '\x02', '\x03', '\x00'}) {
    const std::string value{'0', static_cast<char>('0' ^ 0x1C ^ wanted)};
    const std::string frame = Write("1122", "SL" + value);
    ASSERT_EQ(frame.back(), wanted);
    Perform(*device, {{0, frame + "\r", "\x06\r\n"}, {0, Read("1122", "SL"), Value("SL" + value)}});
  }
}

TEST(OmegaController, LongestOfTheNamesThatBeginAlike_Counts) {
  Perform(R"({"device": "omega", "address": "12", "values": {"S": "1", "SL": "100", "SLX": "5"}})",
          {{0, Write("1122", "SL7") + Write("1122", "S8"), "\x06\r\n\x06\r\n"},
           {0, Read("1122", "SL") + Read("1122", "S") + Read("1122", "SLX"),
            Value("SL7") + Value("S8") + Value("SLX5")}});
}

TEST(OmegaController, WrongChecks_AreThoseOfItsRepliesOnly) {
  std::string spoilt = Value("SL100");
  spoilt[spoilt.size() - 3] = static_cast<char>(spoilt[spoilt.size() - 3] ^ 1);
  Perform(std::string(kDescription) + R"(, "check": "wrong"})",
          {{0, Read("1122", "SL"), spoilt}, {0, Write("1122", "SL1"), "\x06\r\n"}});
}

TEST(OmegaController, Line_IsTheDescribedOneOrItsOwn) {
  const auto line = [](const std::string& more) {
    return TextOf(DeviceOf(ReadDescription(kDescription + more, "d"))->Line().value());
  };
  EXPECT_EQ(line("}"), "9600,E,7,1");
  EXPECT_EQ(line(R"(, "line": {"baud": 1200}})"), "1200,-,-,-");
}

}  // namespace
}  // namespace kesp::simulator
