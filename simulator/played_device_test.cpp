// A personality as a device: what it answers, and when.
#include "simulator/played_device.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulator/description.h"

namespace kesp::simulator {
namespace {

constexpr char kText[] = R"({"commands": {
  "A?": [{"send": "1"}], "SLOW?": [{"wait_ms": 100}, {"send": "2"}],
  "SPLIT?": [{"split": "abc", "pieces": 2, "gap_ms": 10}], "REP?": [{"repeat": "xy", "bytes": 5}],
  "ECHO *": [{"echo": true}]}})";

class PlayedDeviceTest : public testing::Test {
 protected:
  std::string At(int now, std::string_view bytes = {}) { return device_.Take(bytes, Moment(now)).bytes; }

  PlayedDevice device_{ReadInstrument(kText)};
};

TEST_F(PlayedDeviceTest, Commands_AreAnsweredAndReported) {
  const Deeds deeds = device_.Take("A?\rECHO x\rREP?\rNONE\rA", Moment(5));
  EXPECT_EQ(deeds.bytes, "1\rECHO x\rxyxyx\r");
  EXPECT_THAT(deeds.events, testing::ElementsAre("command \"A?\"", "command \"ECHO x\"", "command \"REP?\"",
                                                 "command \"NONE\""));
  EXPECT_EQ(At(6, "?\r"), "1\r");
  EXPECT_EQ(device_.Due(), std::nullopt);
}

TEST_F(PlayedDeviceTest, Wait_DelaysThisReplyAndTheNext) {
  EXPECT_EQ(At(1000, "SLOW?\rA?\r"), "");
  EXPECT_EQ(device_.Due(), Moment(1100));
  EXPECT_EQ(At(1099), "");
  EXPECT_EQ(At(1100), "2\r1\r");
  EXPECT_EQ(device_.Due(), std::nullopt);
}

TEST_F(PlayedDeviceTest, Pieces_ComeOneAfterTheOther) {
  EXPECT_EQ(At(0, "SPLIT?\r"), "ab");
  EXPECT_EQ(At(9), "");
  EXPECT_EQ(At(10), "c\r");
}

}  // namespace
}  // namespace kesp::simulator
