// The port switch: selecting, releasing, and who hears whom.
#include "simulator/port_switch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulator/description.h"
#include "simulator/played_device.h"

namespace kesp::simulator {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::unique_ptr<Device> Named(const std::string& name) {
  return std::make_unique<PlayedDevice>(ReadInstrument(
      R"({"commands": {"N?": [{"send": ")" + name + R"("}], "S?": [{"wait_ms": 50}, {"send": "slow"}]}})"));
}

PortSwitch::Ports TwoPorts() {
  PortSwitch::Ports ports;
  ports["A"] = Named("first");
  ports["B"] = Named("second");
  return ports;
}

class PortSwitchTest : public testing::Test {
 protected:
  Deeds At(int now, std::string_view bytes = {}, PortSwitch* device = nullptr) {
    return (device != nullptr ? *device : plain_).Take(bytes, Moment(now));
  }

  PortSwitch plain_{PortNames::kPlain, TwoPorts(), {}};
  PortSwitch wide_{PortNames::kTwoDigits, TwoPorts(), LineRule{}};
};

TEST_F(PortSwitchTest, Select_JoinsTheInstrument) {
  Deeds deeds = At(0,
                   "\x1B\x02"
                   "B\rN?\r");
  EXPECT_EQ(deeds.bytes, "second\r");
  EXPECT_THAT(deeds.events, ElementsAre("selected B", "port B: command \"N?\""));
  deeds = At(0,
             "\x1B\x02"
             "A\rN?\r");
  EXPECT_EQ(deeds.bytes, "first\r");
}

TEST_F(PortSwitchTest, Release_LosesWhatComes) {
  At(0,
     "\x1B\x02"
     "A\r");
  EXPECT_THAT(At(0, "\x1B\x02\x04").events, ElementsAre("released"));
  const Deeds deeds = At(0, "N");
  EXPECT_EQ(deeds.bytes, "");
  EXPECT_THAT(deeds.events, ElementsAre("lost \"N\", no port is selected"));
}

TEST_F(PortSwitchTest, BytesOneByOne_AreTheSame) {
  std::string reply;
  for (const char byte : std::string("\x1B\x02"
                                     "A\rN?\r"))
    reply += At(0, {&byte, 1}).bytes;
  EXPECT_EQ(reply, "first\r");
}

TEST_F(PortSwitchTest, SixAndEightPorts_WriteTwoCharacters) {
  EXPECT_THAT(At(0,
                 "\x1B\x02"
                 "A\r",
                 &wide_)
                  .events,
              ElementsAre("not understood \"A\\r\""));
  EXPECT_EQ(At(0,
               "\x1B\x02"
               "0A\rN?\r",
               &wide_)
                .bytes,
            "first\r");
  EXPECT_THAT(At(0, "\x1B\x02\x04", &wide_).events, ElementsAre("not understood \"\\x04\""));
  EXPECT_EQ(At(0, "N?\r", &wide_).bytes, "first\r");
  EXPECT_THAT(At(0, "\x1B\x02\x02\x04", &wide_).events, ElementsAre("released"));
}

TEST_F(PortSwitchTest, FourPorts_DoNotKnowTheOthersCommands) {
  EXPECT_THAT(At(0,
                 "\x1B\x02"
                 "0A\r")
                  .events,
              ElementsAre("not understood \"0A\\r\""));
  EXPECT_THAT(At(0, "\x1B\x02\x02\x04").events, ElementsAre("not understood \"\\x02\\x04\""));
}

TEST_F(PortSwitchTest, UnknownName_ChangesNothing) {
  At(0,
     "\x1B\x02"
     "A\r\x1B\x02"
     "C\r");
  EXPECT_EQ(At(0, "N?\r").bytes, "first\r");
}

TEST_F(PortSwitchTest, OtherEscapes_GoToTheInstrument) {
  At(0,
     "\x1B\x02"
     "A\r");
  EXPECT_THAT(At(0, "\x1B[x\r").events, ElementsAre("port A: command \"\\x1B[x\""));
  EXPECT_THAT(At(0,
                 "\x1B\x02"
                 "12345678901234567890\r")
                  .events,
              testing::SizeIs(1));
}

TEST_F(PortSwitchTest, ReplyOfAPortThatIsNoLongerSelected_IsLost) {
  At(0,
     "\x1B\x02"
     "A\rS?\r");
  EXPECT_EQ(plain_.Due(), Moment(50));
  At(10,
     "\x1B\x02"
     "B\r");
  const Deeds deeds = At(60);
  EXPECT_EQ(deeds.bytes, "");
  EXPECT_THAT(deeds.events, IsEmpty());
  EXPECT_EQ(plain_.Due(), std::nullopt);
}

TEST_F(PortSwitchTest, ReplyOfTheSelectedPort_ComesInItsTime) {
  At(0,
     "\x1B\x02"
     "A\rS?\r");
  EXPECT_EQ(At(49).bytes, "");
  EXPECT_EQ(At(50).bytes, "slow\r");
}

TEST_F(PortSwitchTest, Line_IsAsGiven) {
  EXPECT_FALSE(plain_.Line());
  EXPECT_TRUE(wide_.Line());
}

}  // namespace
}  // namespace kesp::simulator
