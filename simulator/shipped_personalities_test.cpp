// The personality files that come with the instrument do what their descriptions say.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include "simulator/description.h"
#include "simulator/loopback_client.h"
#include "simulator/played_device.h"
#include "simulator/served_instrument.h"

namespace kesp::simulator {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

Personality Shipped(const std::string& name) {
  return LoadInstrument(KESP_EXAMPLES "/" + name);
}

class TortureTest : public testing::Test {
 protected:
  Reply EndAfter(const std::string& command) {
    client_.Send(command + "\r");
    return client_.ReadToEnd();
  }

  ServedInstrument served_{Shipped("torture.json")};
  LoopbackClient client_{served_.port()};
};

TEST_F(TortureTest, WholeReplies_AreAsDescribed) {
  const std::pair<std::string, std::string> cases[] = {
      {"*IDN?", "KESP,TORTURE,SIM00666,1.0"},
      {"SPLIT?", "SPLIT 1.0,2.0,3.0"},
      {"TRICKLE?", "TRICKLE 1.0"},
      {"NONASCII?", "1.0\x81\x32.0"},
      {"HIGH80?", "1.0\x80\x32.0"},
      {"ECHO", "ECHO"},
      {"ECHO \xFF\n?", "ECHO \xFF\n?"},
      {"WHAT?", "ERROR 113,Undefined query"},
  };
  for (const auto& [command, reply] : cases) EXPECT_EQ(client_.Ask(command), reply) << command;
}

TEST_F(TortureTest, Silent_HasNoAnswer) {
  client_.Send("SILENT?\r");
  EXPECT_EQ(client_.ReadTo("\r", milliseconds(100)).bytes, "");
  EXPECT_EQ(client_.Ask("*IDN?"), "KESP,TORTURE,SIM00666,1.0");
}

TEST_F(TortureTest, Slow_ComesAfterItsTime) {
  const auto start = steady_clock::now();
  EXPECT_EQ(client_.Ask("SLOW?"), "SLOW 1.0");
  EXPECT_GE(steady_clock::now() - start, milliseconds(1500));
}

TEST_F(TortureTest, Merged_ComesWithTheNextReply) {
  client_.Send("MERGED?\r");
  EXPECT_EQ(client_.ReadTo("\r", milliseconds(100)).bytes, "");
  EXPECT_EQ(client_.Ask("PAIR?"), "MERGED 1.0");
  EXPECT_EQ(client_.ReadTo("\r").bytes, "PAIR 1.0\r");
  EXPECT_EQ(client_.ReadTo("\r").bytes, "PAIR 2.0\r");
}

TEST_F(TortureTest, CrLf_IsTwoLines) {
  client_.Send("CRLF?\r");
  EXPECT_EQ(client_.ReadTo("2.0\r\n").bytes, "1.0\r\n2.0\r\n");
}

TEST_F(TortureTest, Garbage_IsAlwaysTheSameAndNotAscii) {
  client_.Send("GARBAGE?\rECHO1\rGARBAGE?\rECHO1\r");
  const std::string first = client_.ReadTo("ECHO1\r").bytes;
  EXPECT_EQ(first.size(), 64U + 1 + 6);
  EXPECT_TRUE(std::any_of(first.begin(), first.end(), [](char byte) { return (byte & 0x80) != 0; }));
  EXPECT_EQ(client_.ReadTo("ECHO1\r").bytes, first);
}

TEST_F(TortureTest, AllBytes_CountUpAndEndWithCr) {
  std::string expected;
  for (int byte = 0; byte < 256; ++byte) {
    if (byte != '\r') expected.push_back(static_cast<char>(byte));
  }
  EXPECT_EQ(client_.Ask("ALLBYTES?"), expected);
}

TEST_F(TortureTest, BigAndHuge_HaveTheirLengths) {
  for (const auto& [command, length] : {std::pair("BIG?", 1'048'576U), std::pair("HUGE?", 16'777'216U)}) {
    const std::string reply = client_.Ask(command);
    ASSERT_EQ(reply.size(), length);
    std::size_t wrong = 0;
    for (std::size_t i = 0; i < reply.size(); ++i) wrong += reply[i] == "0123456789ABCDEF"[i % 16] ? 0U : 1U;
    EXPECT_EQ(wrong, 0U) << command;
  }
}

TEST_F(TortureTest, Close_HasNoReply) {
  const Reply reply = EndAfter("CLOSE?");
  EXPECT_EQ(reply.end, Heard::kClosed);
  EXPECT_EQ(reply.bytes, "");
}

TEST_F(TortureTest, PartClose_HasHalfAReply) {
  const Reply reply = EndAfter("PARTCLOSE?");
  EXPECT_EQ(reply.end, Heard::kClosed);
  EXPECT_EQ(reply.bytes, "PART 1.");
}

TEST_F(TortureTest, FullClose_HasTheWholeReply) {
  const Reply reply = EndAfter("FULLCLOSE?");
  EXPECT_EQ(reply.end, Heard::kClosed);
  EXPECT_EQ(reply.bytes, "FULL 1.0\r");
}

TEST_F(TortureTest, Reset_IsAReset) {
  const Reply reply = EndAfter("RESET?");
  EXPECT_EQ(reply.end, Heard::kReset);
  EXPECT_EQ(reply.bytes, "");
}

TEST_F(TortureTest, Flood_HasNoEnd) {
  client_.Send("FLOOD?\r");
  const Reply reply = client_.ReadTo("\r", milliseconds(100));
  EXPECT_EQ(reply.end, Heard::kDeadline);
  EXPECT_GT(reply.bytes.size(), 100'000U);
}

TEST(BenchTopController, Commands_AreAnsweredAsDescribed) {
  ServedInstrument served(Shipped("bench-top-controller.json"));
  LoopbackClient client(served.port());
  const std::pair<std::string, std::string> cases[] = {
      {"*IDN?", "KESP,BT200,SIM20417,2.3"},
      {"*VER", "2.3"},
      {"t", "+021.5"},
      {"MEAS?", "+021.48"},
      {"MEAS?", "+021.50"},
      {"OUT?", "037.2"},
      {"UNIT?", "C"},
      {"STAT?", "2"},
      {"ALARM?", "0"},
      {"CAL?", "2024-03-11"},
      {"RANGE?", "-040.00,+180.00"},
      {"WHAT", "ERR 02 UNKNOWN COMMAND"},
      {"WHAT?", "ERR 02 UNKNOWN COMMAND"},
  };
  for (const auto& [command, reply] : cases) EXPECT_EQ(client.Ask(command), reply) << command;
  client.Send("SETP 25.0\r*RST\r*CLS\rLOG?\r");
  EXPECT_EQ(client.ReadTo("53\r\n").bytes, "+021.48\r\n+021.50\r\n+021.53\r\n");
}

// A device as it comes, spoken to at moments of the test's choice.
class ShippedDevice {
 public:
  explicit ShippedDevice(const std::string& name) : device_(LoadDevice(KESP_EXAMPLES "/" + name)) {}

  std::string At(int now, std::string_view bytes = {}) { return device_->Take(bytes, Moment(now)).bytes; }
  std::string Line() const { return TextOf(device_->Line().value()); }

 private:
  const std::unique_ptr<Device> device_;
};

TEST(SerialController, Commands_AreAnsweredAsDescribed) {
  const Personality personality = Shipped("serial-controller.json");
  EXPECT_EQ(TextOf(personality.line.value()), "9600,-,-,-");
  PlayedDevice device(personality);
  EXPECT_EQ(
      device.Take("*IDN?\r*VER\rt\rMEAS?\rMEAS?\rX?\rX\r", Moment(0)).bytes,
      "KESP,SC300,SIM30118,1.4\r\n1.4\r\n+021.5\r\n+021.48\r\n+021.50\r\nERROR 113,Undefined query\r\n");
}

TEST(Redirector, Replies_EndWithCrAlone) {
  PlayedDevice device(Shipped("redirector.json"));
  EXPECT_EQ(device.Take("*VER\rt\r*IDN?\r", Moment(0)).bytes, "1.1\r21.5\rKESP,RD100,S");
  EXPECT_EQ(device.Take({}, Moment(15)).bytes, "IM40220,1.1\r");
}

TEST(OmegaControllerFile, Values_AreReadAndWritten) {
  ShippedDevice device("omega-controller.json");
  EXPECT_EQ(device.Line(), "9600,E,7,1");
  EXPECT_EQ(device.At(0,
                      "\x04"
                      "0011PV\x05\r"),
            "\x02PV0021.5\x03\x1D\r\n");
  EXPECT_EQ(device.At(0,
                      "\x04"
                      "0011\x02SL5\x03\x29\r"),
            "\x06\r\n");
}

TEST(RadioModemFile, Instruments_AreAtTheirAddresses) {
  ShippedDevice device("radio-modem.json");
  EXPECT_EQ(device.Line(), "9600,-,-,-");
  EXPECT_EQ(device.At(0, "MEAS?\r"), "21.5\r");
  EXPECT_EQ(device.At(1000, "+++"), "");
  EXPECT_EQ(device.At(1050), "OK\r");
  EXPECT_EQ(device.At(1060, "ATDL\rATDL1A\rATCN\r*IDN?\r"), "1\rOK\rOK\rKESP,RB20,SIM50026,1.0\r");
}

TEST(PortSwitchFile, Instruments_AreAtTheirPorts) {
  ShippedDevice device("port-switch.json");
  EXPECT_EQ(device.Line(), "9600,-,-,-");
  EXPECT_EQ(device.At(0,
                      "\x1B\x02"
                      "A\r*IDN?\r"),
            "KESP,SC300,SIM30118,1.4\r\n");
  EXPECT_EQ(device.At(0,
                      "\x1B\x02"
                      "B\r*IDN?\r"),
            "KESP,PB50,SIM60002,1.0\r");
  EXPECT_EQ(device.At(0,
                      "\x1B\x02"
                      "D\r\x04"
                      "0022\x02SL5\x03\x29"),
            "\x06\r\n");
  EXPECT_EQ(device.At(0, "\x1B\x02\x04*IDN?\r"), "");
}

}  // namespace
}  // namespace kesp::simulator
