// Commands and replies of one simulated device.
#include "simulator/gpib/simulated_device.h"

#include <gtest/gtest.h>

#include "simulator/description.h"
#include "simulator/gpib/time_out.h"

namespace kesp::simulator::gpib {
namespace {

class SimulatedDeviceTest : public testing::Test {
 protected:
  // Gives the device these bytes, END with the last or not.
  void Tell(SimulatedDevice& device, const std::string& bytes, bool has_end = false) {
    for (std::size_t i = 0; i < bytes.size(); ++i)
      device.Take(bytes[i], has_end && i + 1 == bytes.size(), now_);
  }
  // All that the device has to say now; "|" stands for END.
  std::string Hear(SimulatedDevice& device) {
    std::string heard;
    while (const auto sent = device.Send(now_)) {
      heard += sent->byte;
      if (sent->has_end) heard += '|';
    }
    return heard;
  }
  static Personality Described(const std::string& members) {
    return ReadBus(R"({"gpib": {"primary": 5}, )" + members + "}").devices.at(0);
  }
  static Personality Description(const std::string& more = R"("end": true)") {
    return Described(
        R"("commands": {"A?": "one", "B?": "two", "M?": {"cycle": ["1", "2", "3"]}, "SET": null}, )" + more);
  }

  std::int64_t now_ = 1000;
};

TEST_F(SimulatedDeviceTest, Command_IsCompleteAtEndOrTerminator) {
  for (const char* bytes : {"A?\n", "A?\r\n"}) {
    SimulatedDevice device(Description());
    Tell(device, bytes);
    EXPECT_EQ(Hear(device), "one\n|") << testing::PrintToString(bytes);
  }
  for (const char* bytes : {"A?", "A?\r", "A?\n", "A?\r\n"}) {
    SimulatedDevice device(Description());
    Tell(device, bytes, true);
    EXPECT_EQ(Hear(device), "one\n|") << testing::PrintToString(bytes);
  }
}

TEST_F(SimulatedDeviceTest, CarriageReturnAlone_DoesNotCompleteACommand) {
  SimulatedDevice device(Description());
  Tell(device, "A?\r");
  EXPECT_EQ(Hear(device), "");
}

TEST_F(SimulatedDeviceTest, LongTerminator_IsTakenAsAWhole) {
  Personality description = Description();
  description.terminator = "<>";
  SimulatedDevice device(description);
  Tell(device, "A?<");
  EXPECT_EQ(Hear(device), "");
  Tell(device, ">");
  EXPECT_EQ(Hear(device), "one\n|");
}

TEST_F(SimulatedDeviceTest, WithoutTerminator_OnlyEndCompletesACommand) {
  Personality description = Description();
  description.terminator = "";
  description.commands["A?\n"] = {{{Send{"with line feed\n"}}}};
  SimulatedDevice device(description);
  Tell(device, "A?\n");
  EXPECT_EQ(Hear(device), "");
  SimulatedDevice other(description);
  Tell(other, "A?\n", true);
  EXPECT_EQ(Hear(other), "with line feed\n|");
}

TEST_F(SimulatedDeviceTest, TerminatorsByThemselves_AreNoCommandAndDropNoReply) {
  const Personality description = Description(R"("default": "unknown")");
  SimulatedDevice device(description);
  Tell(device, "A?", true);
  Tell(device, "\r\n\n", true);
  EXPECT_EQ(Hear(device), "one\n|");
}

TEST_F(SimulatedDeviceTest, SecondCommand_TakesTheFirstOnesPlace) {
  SimulatedDevice device(Description());
  Tell(device, "A?\nB?\n");
  EXPECT_EQ(Hear(device), "two\n|");
}

TEST_F(SimulatedDeviceTest, HalfACommand_DropsTheOldReplyAlready) {
  SimulatedDevice device(Description());
  Tell(device, "A?\nB");
  EXPECT_EQ(Hear(device), "");
}

TEST_F(SimulatedDeviceTest, KeptReplies_ComeOneAfterTheOther) {
  Personality description = Description();
  description.keeps_replies = true;
  SimulatedDevice device(description);
  Tell(device, "A?\nB?\n");
  EXPECT_EQ(Hear(device), "one\n|two\n|");
}

TEST_F(SimulatedDeviceTest, CommandWithoutReply_IsTakenInSilence) {
  const Personality description = Description(R"("default": "unknown")");
  SimulatedDevice device(description);
  Tell(device, "SET\n");
  EXPECT_EQ(Hear(device), "");
  EXPECT_EQ(device.ReplyBegins(), kNever);
}

TEST_F(SimulatedDeviceTest, UnknownCommand_GetsTheDefaultOrNothing) {
  SimulatedDevice silent(Description());
  Tell(silent, "X?\n");
  EXPECT_EQ(Hear(silent), "");
  const Personality description = Description(R"("default": "unknown")");
  SimulatedDevice device(description);
  Tell(device, "a?\n");
  EXPECT_EQ(Hear(device), "unknown\n|") << "upper and lower case are different";
}

TEST_F(SimulatedDeviceTest, SeveralReplies_AreGivenInACycle) {
  SimulatedDevice device(Description());
  std::string heard;
  for (int i = 0; i < 4; ++i) {
    Tell(device, "M?\n");
    heard += Hear(device);
  }
  EXPECT_EQ(heard, "1\n|2\n|3\n|1\n|");
}

TEST_F(SimulatedDeviceTest, Prefixes_CountAfterExactNamesAndTheLongerFirst) {
  const Personality description =
      Described(R"("commands": {"SET 1": "exact", "*": "any", "SET *": "set", "SET 1*": "set one"})");
  SimulatedDevice device(description);
  for (const auto& [command, reply] : std::map<std::string, std::string>{
           {"SET 1", "exact"}, {"SET 12", "set one"}, {"SET ", "set"}, {"SET 2", "set"}, {"GO", "any"}}) {
    Tell(device, command, true);
    EXPECT_EQ(Hear(device), reply + "\n|") << command;
  }
}

TEST_F(SimulatedDeviceTest, WithoutEnd_NothingTellsTheLastByte) {
  const Personality description = Description(R"("end": false, "reply_terminator": "\r\n")");
  SimulatedDevice device(description);
  Tell(device, "A?\n");
  EXPECT_EQ(Hear(device), "one\r\n");
}

TEST_F(SimulatedDeviceTest, EmptyReplyWithoutTerminator_IsNoReply) {
  SimulatedDevice device(Described(R"("reply_terminator": "", "commands": {"A?": ""})"));
  Tell(device, "A?\n");
  EXPECT_EQ(Hear(device), "");
}

TEST_F(SimulatedDeviceTest, Delay_CountsFromTheEndOfTheCommand) {
  Personality description = Description();
  description.delay_ms = 2;
  SimulatedDevice device(description);
  Tell(device, "A?\n");
  EXPECT_EQ(device.ReplyBegins(), 3000);
  now_ = 2999;
  EXPECT_EQ(Hear(device), "");
  now_ = 3000;
  EXPECT_EQ(Hear(device), "one\n|");
}

TEST_F(SimulatedDeviceTest, Actions_ComeAtTheirTimesAndEndGoesWithTheLastPiece) {
  SimulatedDevice device(Described(R"("delay_ms": 1, "commands": {
    "A?": [{"wait_ms": 2}, {"split": "abcd", "pieces": 2, "gap_ms": 3, "end": ""}, {"send": "e"}, {"echo": true}]})"));
  Tell(device, "A?\n");
  EXPECT_EQ(device.ReplyBegins(), 4000);
  now_ = 4000;
  EXPECT_EQ(Hear(device), "ab");
  EXPECT_EQ(device.ReplyBegins(), 7000);
  now_ = 7000;
  EXPECT_EQ(Hear(device), "cd|e\n|A?\n|");
}

TEST_F(SimulatedDeviceTest, Clear_DropsCommandAndReplyButNotTheTurn) {
  SimulatedDevice device(Description());
  Tell(device, "M?\n");
  device.Clear();
  EXPECT_EQ(Hear(device), "");
  Tell(device, "A");
  device.Clear();
  Tell(device, "M?\n");
  EXPECT_EQ(Hear(device), "2\n|");
}

}  // namespace
}  // namespace kesp::simulator::gpib
