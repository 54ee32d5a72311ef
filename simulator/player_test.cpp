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

TEST_F(PlayerTest, SendRepeated_ManyBytesGoInFewLargeBlocks) {
  Play({SendRepeated{"0123456789ABCDEF", 16 * 1024 * 1024, "\r"}});
  const Sent sent = player_.TakeSent();
  EXPECT_EQ(sent.bytes, 16U * 1024 * 1024 + 1);
  EXPECT_EQ(sent.head.substr(0, 20), "0123456789ABCDEF0123");
  EXPECT_LE(sent.pieces, 100U);
  EXPECT_LE(carrier_.longest_piece, 1024U * 1024);
}

TEST_F(PlayerTest, Steps_GoToTheCarrierInTheirOrder) {
  EXPECT_EQ(Play({SendPieces{"AB", 2, milliseconds(30)}, Wait{milliseconds(5)}, Flood{milliseconds(10)},
                  Wait{milliseconds(6)}}),
            LineState::kOpen);
  EXPECT_THAT(carrier_.record, ElementsAre("\"A\"", "pause 30", "\"B\"", "pause 5", "endless 10", "pause 6"));
  const Sent sent = player_.TakeSent();
  EXPECT_EQ(sent.pieces, 3U);
  EXPECT_GT(sent.bytes, 2U);
}

TEST_F(PlayerTest, Ending_EndsTheList) {
  EXPECT_EQ(Play({Send{"A"}, Ending::kClose, Send{"B"}}), LineState::kClosed);
  EXPECT_EQ(Play({Ending::kReset}), LineState::kReset);
  EXPECT_THAT(carrier_.record, ElementsAre("\"A\"", "close", "reset"));
}

TEST_F(PlayerTest, HeldBytes_AreCountedUntilTheyGo) {
  Play({HoldForNext{}, Send{"A\r"}});
  EXPECT_THAT(carrier_.record, IsEmpty());
  EXPECT_EQ(player_.held_bytes(), 2U);
  Play({Send{"B\r"}});
  EXPECT_THAT(carrier_.record, ElementsAre(R"("A\rB\r")"));
  EXPECT_EQ(player_.held_bytes(), 0U);
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
