// Every action of a personality file, read and refused.
#include "simulator/action_reader.h"

#include <gtest/gtest.h>

#include <chrono>
#include <nlohmann/json.hpp>

#include "simulator/personality_error.h"

namespace kesp::simulator {
namespace {

using std::chrono::milliseconds;

Answer Read(const std::string& json) {
  return ReadAnswer(nlohmann::json::parse(json), "/here", "\r");
}

// The one action of a text that holds one.
template <typename Kind>
Kind Only(const std::string& action) {
  const Answer answer = Read("[" + action + "]");
  EXPECT_EQ(answer.turns.size(), 1U);
  EXPECT_EQ(answer.turns.at(0).size(), 1U);
  return std::get<Kind>(answer.turns.at(0).at(0));
}

std::string RefusalOf(const std::string& json) {
  try {
    Read(json);
  } catch (const PersonalityError& error) {
    return error.what();
  }
  return "not refused";
}

TEST(ActionReader, Send_EndsWithTheReplyTerminatorOrItsOwnEnd) {
  EXPECT_EQ(Only<Send>(R"({"send": "21.5"})").bytes, "21.5\r");
  EXPECT_EQ(Only<Send>(R"({"send": ""})").bytes, "\r");
  EXPECT_EQ(Only<Send>(R"({"send": "1\u0081", "end": "\r\n"})").bytes, "1\x81\r\n");
  EXPECT_EQ(Only<Send>(R"({"send": "half", "end": ""})").bytes, "half");
}

TEST(ActionReader, SendHex_HasNoTerminator) {
  EXPECT_EQ(Only<Send>(R"({"send_hex": "00 FF 41"})").bytes, std::string("\0\xFF\x41", 3));
}

TEST(ActionReader, Split_KeepsPiecesAndGap) {
  const auto action = Only<SendPieces>(R"({"split": "ABC", "pieces": 2, "gap_ms": 30})");
  EXPECT_EQ(action.bytes, "ABC\r");
  EXPECT_EQ(action.pieces, 2U);
  EXPECT_EQ(action.gap, milliseconds(30));
}

TEST(ActionReader, Trickle_IsAPieceForEachByte) {
  const auto action = Only<SendPieces>(R"({"trickle": "ABC", "gap_ms": 7})");
  EXPECT_EQ(action.bytes, "ABC\r");
  EXPECT_EQ(action.pieces, 4U);
  EXPECT_EQ(action.gap, milliseconds(7));
  EXPECT_EQ(Only<SendPieces>(R"({"trickle": "", "gap_ms": 0, "end": ""})").pieces, 1U);
}

TEST(ActionReader, Random_IsTheSameForTheSameSeedOnly) {
  const std::string first = Only<Send>(R"({"random": 300, "seed": 7})").bytes;
  EXPECT_EQ(first.size(), 300U);
  EXPECT_EQ(Only<Send>(R"({"random": 300, "seed": 7})").bytes, first);
  EXPECT_NE(Only<Send>(R"({"random": 300, "seed": 8})").bytes, first);
  EXPECT_EQ(Only<Send>(R"({"random": 300})").bytes, Only<Send>(R"({"random": 300, "seed": 1})").bytes);
}

TEST(ActionReader, Repeat_KeepsPatternLengthAndEnd) {
  const auto action = Only<SendRepeated>(R"({"repeat": "AB", "bytes": 16777216, "end": "\n"})");
  EXPECT_EQ(action.pattern, "AB");
  EXPECT_EQ(action.total, 16777216U);
  EXPECT_EQ(action.end, "\n");
  EXPECT_EQ(Only<SendRepeated>(R"({"repeat": "AB", "bytes": 1})").end, "\r");
}

TEST(ActionReader, TheOthers_AreRead) {
  EXPECT_EQ(Only<Wait>(R"({"wait_ms": 1500})").length, milliseconds(1500));
  EXPECT_EQ(Only<Flood>(R"({"flood_ms": 8000})").length, milliseconds(8000));
  EXPECT_EQ(Only<Ending>(R"({"close": true})"), Ending::kClose);
  EXPECT_EQ(Only<Ending>(R"({"reset": true})"), Ending::kReset);
  EXPECT_EQ(Only<Echo>(R"({"echo": true})").end, "\r");
  EXPECT_EQ(Only<Echo>(R"({"echo": true, "end": ""})").end, "");
}

TEST(ActionReader, MergeNext_GoesWithPlainReplies) {
  const Answer answer = Read(R"([{"send": "1"}, {"merge_next": true}, {"echo": true}, {"send_hex": "00"}])");
  EXPECT_TRUE(std::holds_alternative<HoldForNext>(answer.turns.at(0).at(1)));
}

TEST(ActionReader, Cycle_KeepsTheListsInOrder) {
  const Answer answer = Read(R"({"cycle": [[{"send": "1"}], [], [{"send": "2"}, {"close": true}]]})");
  ASSERT_EQ(answer.turns.size(), 3U);
  EXPECT_EQ(answer.turns[0].size(), 1U);
  EXPECT_TRUE(answer.turns[1].empty());
  EXPECT_EQ(answer.turns[2].size(), 2U);
}

TEST(ActionReader, EmptyList_IsASilentAnswer) {
  const Answer answer = Read("[]");
  ASSERT_EQ(answer.turns.size(), 1U);
  EXPECT_TRUE(answer.turns[0].empty());
}

struct Refusal {
  std::string json;
  std::string text;
};

class ActionRefusal : public testing::TestWithParam<Refusal> {};

TEST_P(ActionRefusal, BadAction_IsRefusedWithItsPlace) {
  EXPECT_EQ(RefusalOf(GetParam().json), GetParam().text);
}

const Refusal kRefusals[] = {
    {R"([{"sned": "x"}])",
     "/here/0: is not a known action (send, send_hex, wait_ms, split, trickle, random, repeat, flood_ms, "
     "close, "
     "reset, echo, merge_next)"},
    {R"([{"send": "x"}, {}])",
     "/here/1: is not a known action (send, send_hex, wait_ms, split, trickle, random, repeat, flood_ms, "
     "close, "
     "reset, echo, merge_next)"},
    {R"(["x"])", "/here/0: must be an object"},
    {R"("x")", "/here: must be a list of actions"},
    {R"([{"send": 5}])", "/here/0/send: must be a text"},
    {R"([{"send": "x", "wait_ms": 5}])", "/here/0/wait_ms: is not a known field"},
    {R"([{"send": "x", "end": 13}])", "/here/0/end: must be a text"},
    {R"([{"send": "\u0100"}])",
     "/here/0/send: may only hold characters from \\u0000 to \\u00FF (one byte each)"},
    {R"([{"send_hex": "0"}])",
     "/here/0/send_hex: must be pairs of hexadecimal digits, for example \"00 FF\""},
    {R"([{"send_hex": "00", "end": ""}])", "/here/0/end: is not a known field"},
    {R"([{"wait_ms": -1}])", "/here/0/wait_ms: must be a whole number from 0 to 3600000"},
    {R"([{"wait_ms": 1.5}])", "/here/0/wait_ms: must be a whole number from 0 to 3600000"},
    {R"([{"wait_ms": 1, "gap_ms": 1}])", "/here/0/gap_ms: is not a known field"},
    {R"([{"split": "x", "gap_ms": 1}])", "/here/0/pieces: is missing"},
    {R"([{"split": "x", "pieces": 2}])", "/here/0/gap_ms: is missing"},
    {R"([{"split": "x", "pieces": 0, "gap_ms": 1}])",
     "/here/0/pieces: must be a whole number from 1 to 1000000"},
    {R"([{"trickle": "x"}])", "/here/0/gap_ms: is missing"},
    {R"([{"trickle": "x", "gap_ms": 1, "pieces": 1}])", "/here/0/pieces: is not a known field"},
    {R"([{"random": 0}])", "/here/0/random: must be a whole number from 1 to 67108864"},
    {R"([{"random": 1, "seed": -1}])", "/here/0/seed: must be a whole number from 0 to 4294967295"},
    {R"([{"random": 1, "end": ""}])", "/here/0/end: is not a known field"},
    {R"([{"repeat": "", "bytes": 1}])", "/here/0/repeat: must not be empty"},
    {R"([{"repeat": "x"}])", "/here/0/bytes: is missing"},
    {R"([{"repeat": "x", "bytes": 1073741825}])",
     "/here/0/bytes: must be a whole number from 1 to 1073741824"},
    {R"([{"flood_ms": "8"}])", "/here/0/flood_ms: must be a whole number from 0 to 3600000"},
    {R"([{"flood_ms": 8, "end": ""}])", "/here/0/end: is not a known field"},
    {R"([{"close": false}])", "/here/0/close: must be true, or be left out"},
    {R"([{"close": true, "reset": true}])", "/here/0/reset: is not a known field"},
    {R"([{"reset": 1}])", "/here/0/reset: must be true, or be left out"},
    {R"([{"reset": true, "end": ""}])", "/here/0/end: is not a known field"},
    {R"([{"echo": "x"}])", "/here/0/echo: must be true, or be left out"},
    {R"([{"merge_next": null}])", "/here/0/merge_next: must be true, or be left out"},
    {R"([{"merge_next": true}, {"wait_ms": 1}])",
     R"(/here: "merge_next" goes only with "send", "send_hex", "random" and "echo")"},
    {R"([{"flood_ms": 1}, {"merge_next": true}])",
     R"(/here: "merge_next" goes only with "send", "send_hex", "random" and "echo")"},
    {R"({"cycle": []})", "/here/cycle: must be a list of one or more lists of actions"},
    {R"({"cycle": "x"})", "/here/cycle: must be a list of one or more lists of actions"},
    {R"({"cycle": [[], {"send": "x"}]})", "/here/cycle/1: must be a list of actions"},
    {R"({"cycle": [[{"send": 1}]]})", "/here/cycle/0/0/send: must be a text"},
    {R"({"cycle": [[]], "seed": 1})", "/here/seed: is not a known field"},
    {R"({"send": "x"})", "/here/send: is not a known field"},
    {R"({})", "/here/cycle: is missing"},
};

INSTANTIATE_TEST_SUITE_P(Table, ActionRefusal, testing::ValuesIn(kRefusals));

}  // namespace
}  // namespace kesp::simulator
