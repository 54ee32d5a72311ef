// Commands cut out of split and merged input.
#include "simulator/command_framer.h"

#include <gtest/gtest.h>

#include <vector>

namespace kesp::simulator {
namespace {

using Commands = std::vector<std::string>;

// The commands that come out when the pieces go in one after the other.
Commands Frame(std::string_view terminator, const std::vector<std::string_view>& pieces) {
  CommandFramer framer(terminator);
  Commands commands;
  for (const std::string_view piece : pieces) {
    framer.Add(piece);
    while (const auto command = framer.Next()) commands.push_back(*command);
  }
  return commands;
}

TEST(CommandFramer, Pieces_GiveTheSameCommandsHoweverTheyAreCut) {
  EXPECT_EQ(Frame("\r", {"*IDN?\r"}), Commands({"*IDN?"}));
  EXPECT_EQ(Frame("\r", {"*I", "", "DN", "?", "\r"}), Commands({"*IDN?"}));
  EXPECT_EQ(Frame("\r", {"A?\rB?\rC"}), Commands({"A?", "B?"}));
  EXPECT_EQ(Frame("\r", {"A?\rB", "?\rC?\r"}), Commands({"A?", "B?", "C?"}));
  EXPECT_EQ(Frame("\r", {"\r\r", "\r"}), Commands({"", "", ""}));
  EXPECT_EQ(Frame("\r", {"A\n\r", std::string_view("\0\r", 2)}), Commands({"A\n", std::string(1, '\0')}));
}

TEST(CommandFramer, LongTerminator_MayBeCutAnywhere) {
  EXPECT_EQ(Frame("\r\n", {"A?\r", "\nB?\r\n"}), Commands({"A?", "B?"}));
  EXPECT_EQ(Frame("\r\n", {"A\rB", "\r", "\r", "\n"}), Commands({"A\rB\r"}));
  EXPECT_EQ(Frame("END", {"1E", "N", "D2EN", "D"}), Commands({"1", "2"}));
}

TEST(CommandFramer, TooLong_OnlyWhenTheUnfinishedCommandPassesTheLimit) {
  CommandFramer framer("\r", 4);
  framer.Add("123456\r");
  EXPECT_EQ(framer.Next(), "123456");
  EXPECT_EQ(framer.Next(), std::nullopt);
  EXPECT_FALSE(framer.TooLong());
  framer.Add("1234");
  EXPECT_EQ(framer.Next(), std::nullopt);
  EXPECT_FALSE(framer.TooLong());
  framer.Add("5");
  EXPECT_EQ(framer.Next(), std::nullopt);
  EXPECT_TRUE(framer.TooLong());
}

TEST(CommandFramer, ManySmallPieces_AreOneCommand) {
  CommandFramer framer("\r");
  for (int i = 0; i < 4000; ++i) {
    framer.Add("12345678");
    ASSERT_EQ(framer.Next(), std::nullopt);
  }
  framer.Add("\r");
  EXPECT_EQ(framer.Next()->size(), 32'000U);
}

}  // namespace
}  // namespace kesp::simulator
