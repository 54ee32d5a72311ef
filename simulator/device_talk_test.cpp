// A device's conversation on the fake carrier.
#include "simulator/device_talk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "simulator/carrier_fake.h"

namespace kesp::simulator {
namespace {

using testing::ElementsAre;

// Sends back what it takes, and "late" once when only time has passed.
class EchoDevice : public Device {
 public:
  Deeds Take(std::string_view bytes, Moment now) override {
    EXPECT_GE(now, last_);
    last_ = now;
    if (bytes.empty()) return {std::exchange(late, std::string()), {}};
    return {std::string(bytes), {"took " + std::string(bytes)}};
  }
  std::optional<Moment> Due() const override {
    if (late.empty()) return std::nullopt;
    return last_;
  }
  std::optional<LineRule> Line() const override { return line; }

  std::string late;
  std::optional<LineRule> line;

 private:
  Moment last_{0};
};

class DeviceTalkTest : public testing::Test {
 protected:
  std::string Talk(std::deque<std::string> input) {
    std::ostringstream lines;
    EventLog log({&lines}, [] { return std::string("-"); });
    carrier_.line = LineSettings{};
    carrier_.input = std::move(input);
    DeviceTalk talk(carrier_, device_, log, 1);
    RunToEnd(talk.Run());
    talk.Finish();
    return lines.str();
  }

  CarrierFake carrier_;
  EchoDevice device_;
};

TEST_F(DeviceTalkTest, Bytes_AreCarriedAndLogged) {
  EXPECT_EQ(Talk({"ab", "c"}),
            "- #1 connected from fake:1\n"
            "- #1 line 9600,N,8,1\n"
            "- #1 received \"ab\"\n"
            "- #1 took ab\n"
            "- #1 reply \"ab\"\n"
            "- #1 received \"c\"\n"
            "- #1 took c\n"
            "- #1 reply \"c\"\n"
            "- #1 closed by the client\n");
  EXPECT_THAT(carrier_.record, ElementsAre("\"ab\"", "\"c\""));
  EXPECT_EQ(carrier_.patience, kForever);
}

TEST_F(DeviceTalkTest, Silence_LetsTheDeviceAct) {
  device_.late = "at the start";
  Talk({""});
  EXPECT_THAT(carrier_.record, ElementsAre("\"at the start\""));
}

TEST_F(DeviceTalkTest, DueDevice_IsNotKeptWaiting) {
  class Restless : public EchoDevice {
    std::optional<Moment> Due() const override { return Moment(0); }
  } restless;
  EventLog log({}, [] { return std::string(); });
  DeviceTalk talk(carrier_, restless, log, 1);
  RunToEnd(talk.Run());
  EXPECT_EQ(carrier_.patience, std::chrono::milliseconds(0));
}

TEST_F(DeviceTalkTest, LineThatDoesNotSuit_IsAnsweredWithGarbage) {
  device_.line = LineRule{1200, {}, {}, {}};
  EXPECT_EQ(Talk({"ab"}),
            "- #1 connected from fake:1\n"
            "- #1 line 9600,N,8,1\n"
            "- #1 received \"ab\"\n"
            "- #1 garbled: the device's line is 1200,-,-,-\n"
            "- #1 closed by the client\n");
  EXPECT_THAT(carrier_.record, ElementsAre(Quoted(kGarbage)));
}

TEST_F(DeviceTalkTest, ClientGone_IsALineAndNoError) {
  carrier_.sends_left = 0;
  EXPECT_NE(Talk({"ab"}).find("- #1 client gone: Broken pipe\n"), std::string::npos);
}

}  // namespace
}  // namespace kesp::simulator
