// The port switch: selecting, releasing, and who hears whom.
#include "simulator/port_switch.h"

#include <gtest/gtest.h>

#include "simulator/device_scenes.h"

namespace kesp::simulator {
namespace {

std::string SwitchOf(int model) {
  return R"({"device": "port_switch", "model": )" + std::to_string(model) + R"(, "ports": {
    "A": {"commands": {"N?": "first", "S?": [{"wait_ms": 50}, {"send": "slow"}]}, "on_connect": "never said"},
    "B": {"commands": {"N?": "second"}}}})";
}
std::string Select(const std::string& port) {
  return "\x1B\x02" + port + "\r";
}
const std::string kRelease = "\x1B\x02\x04";

TEST(PortSwitch, FourPorts_AreSelectedByTheirNames) {
  Perform(SwitchOf(4), {{0, "N", "", "lost \"N\", no port is selected"},
                        {0, Select("B") + "N?\r", "second\r", "selected B; port B: command \"N?\""},
                        {0, Select("A") + "N?\r", "first\r"},
                        {0, Select("C"), "", "not understood \"C\\r\""},
                        {0, Select("0A") + "\x1B\x02\x02\x04", "",
                         "not understood \"0A\\r\"; not understood \"\\x02\\x04\""},
                        {0, "\x1B", ""},
                        {0, "\x02", ""},
                        {0, "B", ""},
                        {0, "\r", "", "selected B"},
                        {0, kRelease, "", "released"},
                        {0, "N?\r", ""}});
}

TEST(PortSwitch, SixAndEightPorts_WriteTwoCharacters) {
  for (const int model : {6, 8}) {
    Perform(SwitchOf(model), {{0, Select("A"), "", "not understood \"A\\r\""},
                              {0, Select("0A") + "N?\r", "first\r"},
                              {0, kRelease, "", "not understood \"\\x04\""},
                              {0, "N?\r", "first\r"},
                              {0, "\x1B\x02\x02\x04", "", "released"}});
  }
}

TEST(PortSwitch, OtherEscapes_GoToTheInstrument) {
  Perform(SwitchOf(4),
          {{0, Select("A") + "\x1B[x\r", "", "selected A; port A: command \"\\x1B[x\""},
           {0, Select("12345678901234567890"), "", "port A: command \"\\x1B\\x0212345678901234567890\""}});
}

TEST(PortSwitch, Replies_ComeInTheirTimeFromTheSelectedPortOnly) {
  const auto device = DeviceOf(ReadDescription(SwitchOf(4), "d"));
  Perform(*device, {{0, Select("A") + "S?\r", ""}});
  EXPECT_EQ(device->Due(), Moment(50));
  Perform(*device,
          {{49, "", ""}, {50, "", "slow\r"}, {60, "S?\r", ""}, {70, Select("B"), ""}, {120, "", ""}});
  EXPECT_EQ(device->Due(), std::nullopt);
  Perform(*device, {{121, Select("A"), ""}});
}

}  // namespace
}  // namespace kesp::simulator
