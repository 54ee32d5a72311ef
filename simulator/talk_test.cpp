// A device's talk on the fake carrier: what goes over the line, and what the log says.
#include "simulator/talk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "simulator/carrier_fake.h"
#include "simulator/device_scenes.h"

namespace kesp::simulator {
namespace {

using testing::ElementsAre;

constexpr char kInstrument[] = R"({"commands": {
  "A?": "1", "B?": [{"split": "22", "pieces": 3, "gap_ms": 4}], "S?": [{"wait_ms": 250}, {"send": "slow"}],
  "BYE": [{"send": "bye"}, {"close": true}], "RST": [{"reset": true}], "FLOOD": [{"flood_ms": 10}],
  "HOLD?": [{"merge_next": true}, {"send": "held"}]}})";

class TalkTest : public testing::Test {
 protected:
  // The log of a talk with this input, without times and numbers, and without the line that opens it.
  std::string Talk(const std::string& json, std::deque<std::string> input) {
    const std::unique_ptr<Device> device = DeviceOf(ReadDescription(json, "d"));
    std::ostringstream lines;
    EventLog log({&lines}, [] { return std::string("-"); });
    carrier_.input = std::move(input);
    class Talk talk(carrier_, *device, log, 1);
    RunToEnd(talk.Run());
    talk.Finish();
    std::string text = lines.str();
    for (std::size_t place = 0; (place = text.find("- #1 ", place)) != std::string::npos;)
      text.erase(place, 5);
    EXPECT_EQ(text.rfind("connected from fake:1\n", 0), 0U);
    return text.substr(text.find('\n') + 1);
  }

  CarrierFake carrier_;
};

TEST_F(TalkTest, Commands_AreCarriedOutInOrderAndLogged) {
  EXPECT_EQ(Talk(kInstrument, {"A?\rB", "?\rC\rHOLD?\rA?\rFLOOD\r"}),
            "command \"A?\"\nreply \"1\\r\" (2 bytes, 1 piece)\n"
            "command \"B?\"\nreply \"22\\r\" (3 bytes, 3 pieces)\n"
            "command \"C\"\n"
            "command \"HOLD?\"\n5 bytes held back for the next reply\n"
            "command \"A?\"\nreply \"held\\r1\\r\" (7 bytes, 1 piece)\n"
            "command \"FLOOD\"\nreply \"012345678901234567890123456789012345678901234567890123456789...\" "
            "(262140 bytes, 1 piece)\n"
            "closed by the client\n");
  EXPECT_THAT(carrier_.record, ElementsAre(R"("1\r")", "\"2\"", "pause 4", "\"2\"", "pause 4", R"("\r")",
                                           R"("held\r1\r")", "endless 10"));
}

TEST_F(TalkTest, Endings_LeaveFurtherCommandsUnanswered) {
  EXPECT_EQ(Talk(kInstrument, {"BYE\rA?\r", "A?\r"}),
            "command \"BYE\"\nreply \"bye\\r\" (4 bytes, 1 piece)\nclosed by the instrument\n");
  EXPECT_EQ(Talk(kInstrument, {"RST\r"}), "command \"RST\"\nreset by the instrument\n");
  EXPECT_EQ(Talk(R"({"on_connect": [{"close": true}], "default": "ok"})", {"x\r"}),
            "closed by the instrument\n");
  EXPECT_THAT(carrier_.record, ElementsAre(R"("bye\r")", "close", "reset", "close"));
}

TEST_F(TalkTest, ClientGoneInAReply_IsALineAndNoError) {
  carrier_.sends_left = 1;
  EXPECT_EQ(
      Talk(kInstrument, {"B?\r", "A?\r"}),
      "command \"B?\"\nreply \"2\" (1 byte, 1 piece) before the client was gone\nclient gone: Broken pipe\n");
}

TEST_F(TalkTest, InstrumentThatAnswers_DoesNotListen) {
  Talk(kInstrument, {"S?\r", "A?\r"});
  EXPECT_THAT(carrier_.record, ElementsAre("pause 250", R"("slow\r")", R"("1\r")"));
}

TEST_F(TalkTest, DeviceThatListensAlways_IsDrivenByItsOwnTimes) {
  const std::string log =
      Talk(R"({"device": "radio_modem", "behind": {"0": {"default": "x"}}})", {"+++", "", "ATMY\r"});
  EXPECT_EQ(log,
            "command mode begins\nreply \"OK\\r\" (3 bytes, 1 piece)\nmodem command \"ATMY\"\n"
            "reply \"0\\r\" (2 bytes, 1 piece)\nclosed by the client\n");
  EXPECT_EQ(carrier_.patience, std::chrono::milliseconds(10'000));
}

TEST_F(TalkTest, SerialLine_HasEveryByteAndItsSettingsInTheLog) {
  carrier_.line = LineSettings{};
  carrier_.rest = "Z";
  EXPECT_EQ(Talk(kInstrument, {"A?\rB", "", "B", "?"}),
            "line 9600,N,8,1\nreceived \"A?\\rB\"\ncommand \"A?\"\nreply \"1\\r\" (2 bytes, 1 piece)\n"
            "received \"B?\"\nclosed by the client\nreceived \"Z\"\n");
  EXPECT_EQ(carrier_.patience, std::chrono::milliseconds(200));
  const std::string much(5000, 'x');
  carrier_.rest.clear();
  EXPECT_NE(Talk(kInstrument, {much}).find("received \"" + much + "\"\n"), std::string::npos);
}

TEST_F(TalkTest, LineThatDoesNotSuit_IsAnsweredWithGarbage) {
  const std::string json = R"({"line": {"baud": 1200}, "commands": {"A?": "1"}})";
  carrier_.line = LineSettings{};
  EXPECT_EQ(Talk(json, {"A?\r"}),
            "line 9600,N,8,1\nreceived \"A?\\r\"\ngarbled: the device's line is 1200,-,-,-\nclosed by the "
            "client\n");
  carrier_.line = LineSettings{1200, 'N', 8, 1};
  Talk(json, {"A?\r"});
  carrier_.line.reset();
  Talk(json, {"A?\r"});
  EXPECT_THAT(carrier_.record, ElementsAre(Quoted(kGarbage), R"("1\r")", R"("1\r")"));
}

TEST(LineRule, Settings_SuitAsFarAsTheyAreGivenAndKnown) {
  const LineRule rule{9600, 'E', 7, 1};
  const struct {
    LineRule rule;
    LineSettings line;
    bool suits;
  } cases[] = {
      {{9600, {}, {}, {}}, {9600, 'O', 7, 2}, true},
      {{9600, {}, {}, {}}, {19200, 'N', 8, 1}, false},
      {rule, {9600, 'E', 7, 1}, true},
      {rule, {9600, 'N', 7, 1}, false},
      {rule, {9600, 'E', 8, 1}, false},
      {rule, {9600, 'E', 7, 2}, false},
      {rule, {9601, 'E', 7, 1}, false},
      // A pseudo-terminal tells neither even parity nor data bits.
      {rule, {9600, 'N', 8, 1, false}, true},
      {rule, {9600, 'O', 8, 1, false}, false},
      {rule, {9600, 'N', 8, 2, false}, false},
      {{9600, 'O', {}, {}}, {9600, 'N', 8, 1, false}, false},
  };
  for (const auto& [wanted, line, suits] : cases)
    EXPECT_EQ(Suits(wanted, line), suits) << TextOf(wanted) << " and " << TextOf(line);
}

TEST(EventLog, Lines_GoToEverySinkWithTheTimeOfDay) {
  std::ostringstream first;
  std::ostringstream second;
  EventLog({&first, &second}, TimeOfDay).Line(0, "cannot accept");
  EXPECT_EQ(first.str(), second.str());
  std::string form = first.str();
  for (char& character : form) character = character >= '0' && character <= '9' ? '0' : character;
  EXPECT_EQ(form, "00:00:00.000 cannot accept\n");
}

}  // namespace
}  // namespace kesp::simulator
