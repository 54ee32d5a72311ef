// Every action of an answer to discovery, read and refused.
#include "simulator/discovery_reader.h"

#include <gtest/gtest.h>

#include <chrono>
#include <nlohmann/json.hpp>

#include "simulator/personality_error.h"

namespace kesp::simulator {
namespace {

DiscoveryAnswer Read(const std::string& json) {
  return ReadDiscoveryAnswer(nlohmann::json::parse(json), "/here");
}

std::string BytesOf(const std::string& action) {
  return std::get<Datagram>(Read("[" + action + "]").turns.at(0).at(0)).bytes;
}

TEST(DiscoveryReader, Datagrams_HaveNoTerminator) {
  EXPECT_EQ(BytesOf(R"({"send": "A\u00F7"})"), "A\xF7");
  EXPECT_EQ(BytesOf(R"({"send": ""})"), "");
  EXPECT_EQ(BytesOf(R"({"send": "A", "end": "\r"})"), "A\r");
  EXPECT_EQ(BytesOf(R"({"send_hex": "00 F7"})"), std::string("\0\xF7", 2));
  EXPECT_EQ(BytesOf(R"({"random": 300})").size(), 300U);
}

TEST(DiscoveryReader, Repeat_IsOneDatagram) {
  EXPECT_EQ(BytesOf(R"({"repeat": "AB", "bytes": 5})"), "ABABA");
  EXPECT_EQ(BytesOf(R"({"repeat": "ABC", "bytes": 2, "end": "."})"), "AB.");
  const std::string longest = BytesOf(R"({"repeat": "AB", "bytes": 65506, "end": "\u00F7"})");
  EXPECT_EQ(longest.size(), kLongestDatagram);
  EXPECT_EQ(longest.find('\xF7'), kLongestDatagram - 1);
}

TEST(DiscoveryReader, StormAndWait_AreRead) {
  const DiscoveryAnswer answer =
      Read(R"([{"wait_ms": 40}, {"storm": [{"send": "A"}, {"send_hex": "F7"}], "datagrams": 9}])");
  EXPECT_EQ(std::get<Wait>(answer.turns.at(0).at(0)).length, std::chrono::milliseconds(40));
  const auto storm = std::get<Storm>(answer.turns.at(0).at(1));
  ASSERT_EQ(storm.datagrams.size(), 2U);
  EXPECT_EQ(storm.datagrams[1].bytes, "\xF7");
  EXPECT_EQ(storm.count, 9U);
}

TEST(DiscoveryReader, CycleAndEmptyList_AreTurns) {
  const DiscoveryAnswer answer = Read(R"({"cycle": [[], [{"send": "1"}, {"send": "2"}]]})");
  ASSERT_EQ(answer.turns.size(), 2U);
  EXPECT_TRUE(answer.turns[0].empty());
  EXPECT_EQ(answer.turns[1].size(), 2U);
  EXPECT_TRUE(Read("[]").turns.at(0).empty());
}

TEST(UsualDiscoveryAnswer, Datagram_HasThirtyBytesAndF7) {
  const auto datagram = std::get<Datagram>(UsualDiscoveryAnswer().turns.at(0).at(0));
  EXPECT_EQ(datagram.bytes.size(), 30U);
  EXPECT_EQ(datagram.bytes.substr(0, 4), std::string("\0\0\0\xF7", 4));
}

constexpr char kNotAnAction[] =
    "/here/0: is not an action of discovery (send, send_hex, random, repeat, storm, wait_ms)";
constexpr char kNotADatagram[] = "/here/0/storm/0: is not a datagram (send, send_hex, random, repeat)";

struct Refusal {
  std::string json;
  std::string text;
};

class DiscoveryRefusal : public testing::TestWithParam<Refusal> {};

TEST_P(DiscoveryRefusal, BadAction_IsRefusedWithItsPlace) {
  try {
    Read(GetParam().json);
    ADD_FAILURE() << "not refused";
  } catch (const PersonalityError& error) {
    EXPECT_EQ(error.what(), GetParam().text);
  }
}

const Refusal kRefusals[] = {
    {R"([{"close": true}])", kNotAnAction},
    {R"([{"reset": true}])", kNotAnAction},
    {R"([{"split": "x", "pieces": 2, "gap_ms": 1}])", kNotAnAction},
    {R"([{"trickle": "x", "gap_ms": 1}])", kNotAnAction},
    {R"([{"flood_ms": 1}])", kNotAnAction},
    {R"([{"echo": true}])", kNotAnAction},
    {R"([{"merge_next": true}])", kNotAnAction},
    {R"([{"sned": "x"}])", kNotAnAction},
    {R"([{}])", kNotAnAction},
    {R"(["x"])", "/here/0: must be an object"},
    {R"("x")", "/here: must be a list of actions"},
    {R"([{"send": 5}])", "/here/0/send: must be a text"},
    {R"([{"send": "x", "close": true}])", "/here/0/close: is not a known field"},
    {R"([{"random": 1, "split": "x", "pieces": 1, "gap_ms": 1}])", "/here/0/random: is not a known field"},
    {R"([{"repeat": "x", "bytes": 1, "wait_ms": 1}])", "/here/0/bytes: is not a known field"},
    {R"([{"wait_ms": -1}])", "/here/0/wait_ms: must be a whole number from 0 to 3600000"},
    {R"([{"repeat": "x", "bytes": 65508}])", "/here/0: makes a datagram of 65508 bytes; 65507 is the most"},
    {R"([{"repeat": "x", "bytes": 65507, "end": "y"}])",
     "/here/0: makes a datagram of 65508 bytes; 65507 is the most"},
    {R"([{"random": 65508}])", "/here/0: makes a datagram of 65508 bytes; 65507 is the most"},
    {R"([{"storm": []}])", "/here/0/storm: must be a list of one or more datagrams"},
    {R"([{"storm": "x", "datagrams": 1}])", "/here/0/storm: must be a list of one or more datagrams"},
    {R"([{"storm": ["x"], "datagrams": 1}])", "/here/0/storm/0: must be an object"},
    {R"([{"storm": [{"wait_ms": 1}], "datagrams": 1}])", kNotADatagram},
    {R"([{"storm": [{"storm": [], "datagrams": 1}], "datagrams": 1}])", kNotADatagram},
    {R"([{"storm": [{"send": "x"}]}])", "/here/0/datagrams: is missing"},
    {R"([{"storm": [{"send": "x"}], "datagrams": 0}])",
     "/here/0/datagrams: must be a whole number from 1 to 1000000"},
    {R"([{"storm": [{"send": "x"}], "datagrams": 1, "end": ""}])", "/here/0/end: is not a known field"},
    {R"({"cycle": []})", "/here/cycle: must be a list of one or more lists of actions"},
    {R"({"cycle": [[], [{"close": true}]]})",
     "/here/cycle/1/0: is not an action of discovery (send, send_hex, random, repeat, storm, wait_ms)"},
    {R"({"send": "x"})", "/here/send: is not a known field"},
};

INSTANTIATE_TEST_SUITE_P(Table, DiscoveryRefusal, testing::ValuesIn(kRefusals));

}  // namespace
}  // namespace kesp::simulator
