// The playing of actions on the fake carrier.
#include "simulator/player.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulator/carrier_fake.h"

namespace kesp::simulator {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

class PlayerTest : public testing::Test {
 protected:
  LineState Play(const ActionList& actions, std::string_view command = "CMD") {
    LineState state = LineState::kOpen;
    RunToEnd([](Player& player, const ActionList& list, std::string_view text,
                LineState& result) -> asio::awaitable<void> {
      result = co_await player.Play(list, text);
    }(player_, actions, command, state));
    return state;
  }

  CarrierFake carrier_;
  Player player_{carrier_};
};

TEST_F(PlayerTest, Send_IsOnePiece) {
  EXPECT_EQ(Play({Send{"21.5\r"}}), LineState::kOpen);
  EXPECT_THAT(carrier_.record, ElementsAre(R"("21.5\r")"));
}

TEST_F(PlayerTest, Nothing_SendsNothing) {
  EXPECT_EQ(Play({}), LineState::kOpen);
  EXPECT_EQ(Play({Send{""}}), LineState::kOpen);
  EXPECT_THAT(carrier_.record, IsEmpty());
}

TEST_F(PlayerTest, SendPieces_AreEvenAndApart) {
  Play({SendPieces{"ABCDE", 2, milliseconds(30)}});
  EXPECT_THAT(carrier_.record, ElementsAre("\"AB\"", "pause 30", "\"CDE\""));
}

TEST_F(PlayerTest, MorePiecesThanBytes_AreSingleBytes) {
  Play({SendPieces{"AB\r", 9, milliseconds(1)}});
  EXPECT_THAT(carrier_.record, ElementsAre("\"A\"", "pause 1", "\"B\"", "pause 1", R"("\r")"));
}

TEST_F(PlayerTest, SendRepeated_EndsInTheMiddleOfThePattern) {
  Play({SendRepeated{"ABC", 7, "\r"}});
  EXPECT_THAT(carrier_.record, ElementsAre(R"("ABCABCA\r")"));
}

TEST_F(PlayerTest, SendRepeated_PatternLongerThanTheReply) {
  Play({SendRepeated{"ABC", 2, ""}});
  EXPECT_THAT(carrier_.record, ElementsAre("\"AB\""));
}

TEST_F(PlayerTest, SendRepeated_ManyBytesGoInFewLargeBlocks) {
  Play({SendRepeated{"0123456789ABCDEF", 16 * 1024 * 1024, "\r"}});
  const Sent sent = player_.TakeSent();
  EXPECT_EQ(sent.bytes, 16U * 1024 * 1024 + 1);
  EXPECT_EQ(sent.head.substr(0, 20), "0123456789ABCDEF0123");
  EXPECT_LE(sent.pieces, 100U);
  EXPECT_LE(carrier_.longest_piece, 1024U * 1024);
}

TEST_F(PlayerTest, Echo_SendsTheCommandByteForByte) {
  Play({Echo{"\r"}}, std::string_view("E\0\xFF", 3));
  EXPECT_THAT(carrier_.record, ElementsAre(R"("E\x00\xFF\r")"));
}

TEST_F(PlayerTest, WaitAndFlood_GoToTheCarrier) {
  Play({Wait{milliseconds(5)}, Flood{milliseconds(10)}});
  EXPECT_THAT(carrier_.record, ElementsAre("pause 5", "endless 10"));
  EXPECT_GT(player_.TakeSent().bytes, 0U);
}

TEST_F(PlayerTest, Ending_EndsTheList) {
  EXPECT_EQ(Play({Send{"A"}, Ending::kClose, Send{"B"}}), LineState::kClosed);
  EXPECT_THAT(carrier_.record, ElementsAre("\"A\"", "close"));
}

TEST_F(PlayerTest, Reset_EndsTheList) {
  EXPECT_EQ(Play({Ending::kReset, Send{"B"}}), LineState::kReset);
  EXPECT_THAT(carrier_.record, ElementsAre("reset"));
}

TEST_F(PlayerTest, HoldForNext_JoinsTheReplyToTheNext) {
  Play({HoldForNext{}, Send{"A\r"}});
  EXPECT_THAT(carrier_.record, IsEmpty());
  EXPECT_EQ(player_.held_bytes(), 2U);
  Play({});
  EXPECT_THAT(carrier_.record, IsEmpty());
  Play({Send{"B\r"}, Send{"C\r"}});
  EXPECT_THAT(carrier_.record, ElementsAre(R"("A\rB\r")", R"("C\r")"));
  EXPECT_EQ(player_.held_bytes(), 0U);
}

TEST_F(PlayerTest, HoldForNext_CountsWhereverItStandsAndAddsUp) {
  Play({Send{"A"}, HoldForNext{}, Send{"B"}});
  Play({Echo{""}, HoldForNext{}}, "C");
  Play({SendPieces{"DE", 2, milliseconds(1)}});
  EXPECT_THAT(carrier_.record, ElementsAre("\"ABCD\"", "pause 1", "\"E\""));
}

TEST_F(PlayerTest, ClientGone_ThrowsAndTellsHowFarItCame) {
  carrier_.sends_left = 2;
  EXPECT_THROW(Play({SendPieces{"ABCD", 4, milliseconds(1)}}), std::system_error);
  const Sent sent = player_.TakeSent();
  EXPECT_EQ(sent.bytes, 2U);
  EXPECT_EQ(sent.head, "AB");
  EXPECT_EQ(player_.TakeSent().bytes, 0U);
}

}  // namespace
}  // namespace kesp::simulator
