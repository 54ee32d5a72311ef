// A whole conversation on the fake carrier.
#include "simulator/conversation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "simulator/carrier_fake.h"
#include "simulator/description.h"

namespace kesp::simulator {
namespace {

using testing::ElementsAre;

class ConversationTest : public testing::Test {
 protected:
  // The log of a conversation with this input, without the times.
  std::string Talk(const std::string& personality, std::deque<std::string> input) {
    Instrument instrument(ReadInstrument(personality));
    std::ostringstream lines;
    EventLog log({&lines}, [] { return std::string("-"); });
    carrier_.input = std::move(input);
    Conversation conversation(carrier_, instrument, log, 1);
    RunToEnd(conversation.Run());
    conversation.Finish();
    return lines.str();
  }

  CarrierFake carrier_;
};

constexpr char kTwo[] =
    R"({"commands": {"A?": [{"send": "1"}], "B?": [{"split": "22", "pieces": 3, "gap_ms": 4}],
  "BYE": [{"send": "bye"}, {"close": true}], "RST": [{"reset": true}],
  "HOLD?": [{"merge_next": true}, {"send": "held"}]}})";

TEST_F(ConversationTest, Commands_AreAnsweredInOrderAndLogged) {
  EXPECT_EQ(Talk(kTwo, {"A?\rB", "?\rC\r"}),
            "- #1 connected from fake:1\n"
            "- #1 command \"A?\"\n"
            "- #1 reply \"1\\r\" (2 bytes, 1 piece)\n"
            "- #1 command \"B?\"\n"
            "- #1 reply \"22\\r\" (3 bytes, 3 pieces)\n"
            "- #1 command \"C\"\n"
            "- #1 closed by the client\n");
  EXPECT_THAT(carrier_.record, ElementsAre(R"("1\r")", "\"2\"", "pause 4", "\"2\"", "pause 4", R"("\r")"));
}

TEST_F(ConversationTest, OnConnect_ComesBeforeAnyCommand) {
  Talk(R"({"on_connect": [{"send": "READY"}], "default": [{"send": "ok"}]})", {"x\r"});
  EXPECT_THAT(carrier_.record, ElementsAre(R"("READY\r")", R"("ok\r")"));
}

TEST_F(ConversationTest, OnConnectClose_EndsAtOnce) {
  EXPECT_EQ(Talk(R"({"on_connect": [{"close": true}], "default": [{"send": "ok"}]})", {"x\r"}),
            "- #1 connected from fake:1\n- #1 closed by the instrument\n");
  EXPECT_THAT(carrier_.record, ElementsAre("close"));
}

TEST_F(ConversationTest, Close_LeavesFurtherCommandsUnanswered) {
  EXPECT_EQ(Talk(kTwo, {"BYE\rA?\r", "A?\r"}),
            "- #1 connected from fake:1\n"
            "- #1 command \"BYE\"\n"
            "- #1 reply \"bye\\r\" (4 bytes, 1 piece)\n"
            "- #1 closed by the instrument\n");
  EXPECT_THAT(carrier_.record, ElementsAre(R"("bye\r")", "close"));
}

TEST_F(ConversationTest, Reset_IsLogged) {
  EXPECT_EQ(Talk(kTwo, {"RST\r"}),
            "- #1 connected from fake:1\n- #1 command \"RST\"\n- #1 reset by the instrument\n");
}

TEST_F(ConversationTest, HeldReply_IsLoggedUntilItGoesOut) {
  EXPECT_EQ(Talk(kTwo, {"HOLD?\r", "A?\r"}),
            "- #1 connected from fake:1\n"
            "- #1 command \"HOLD?\"\n"
            "- #1 5 bytes held back for the next reply\n"
            "- #1 command \"A?\"\n"
            "- #1 reply \"held\\r1\\r\" (7 bytes, 1 piece)\n"
            "- #1 closed by the client\n");
}

TEST_F(ConversationTest, ClientGoneInAReply_IsALineAndNoError) {
  carrier_.sends_left = 1;
  EXPECT_EQ(Talk(kTwo, {"B?\r", "A?\r"}),
            "- #1 connected from fake:1\n"
            "- #1 command \"B?\"\n"
            "- #1 reply \"2\" (1 byte, 1 piece) before the client was gone\n"
            "- #1 client gone: Broken pipe\n");
}

TEST_F(ConversationTest, SerialLine_HasEveryByteInTheLog) {
  carrier_.line = LineSettings{};
  carrier_.rest = "Z";
  EXPECT_EQ(Talk(kTwo, {"A?\rB", "", "?"}),
            "- #1 connected from fake:1\n"
            "- #1 line 9600,N,8,1\n"
            "- #1 received \"A?\\rB\"\n"
            "- #1 command \"A?\"\n"
            "- #1 reply \"1\\r\" (2 bytes, 1 piece)\n"
            "- #1 closed by the client\n"
            "- #1 received \"?Z\"\n");
  EXPECT_EQ(carrier_.patience, std::chrono::milliseconds(200));
}

constexpr char kAt1200[] = R"({"line": {"baud": 1200}, "commands": {"A?": [{"send": "1"}]}})";

TEST_F(ConversationTest, LineThatDoesNotSuit_IsAnsweredWithGarbage) {
  carrier_.line = LineSettings{};
  EXPECT_EQ(Talk(kAt1200, {"A?\r"}),
            "- #1 connected from fake:1\n"
            "- #1 line 9600,N,8,1\n"
            "- #1 received \"A?\\r\"\n"
            "- #1 garbled: the instrument's line is 1200,-,-,-\n"
            "- #1 closed by the client\n");
  EXPECT_THAT(carrier_.record, ElementsAre(Quoted(kGarbage)));
}

TEST_F(ConversationTest, LineThatSuitsOrNoSerialLine_IsUnderstood) {
  carrier_.line = LineSettings{1200, 'N', 8, 1};
  Talk(kAt1200, {"A?\r"});
  carrier_.line.reset();
  Talk(kAt1200, {"A?\r"});
  EXPECT_THAT(carrier_.record, ElementsAre(R"("1\r")", R"("1\r")"));
}

TEST_F(ConversationTest, CommandWithoutEnd_IsResetAtTheLimit) {
  const std::string piece(8 * 1024 * 1024, 'x');
  const std::string lines = Talk(kTwo, std::deque<std::string>(9, piece));
  EXPECT_EQ(lines, "- #1 connected from fake:1\n- #1 reset: command without an end\n");
  EXPECT_THAT(carrier_.record, ElementsAre("reset"));
}

}  // namespace
}  // namespace kesp::simulator
