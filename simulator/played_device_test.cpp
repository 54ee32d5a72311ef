// What descriptions of instruments say, played at moments of the test's choice.
#include "simulator/played_device.h"

#include <gtest/gtest.h>

#include "simulator/device_scenes.h"

namespace kesp::simulator {
namespace {

using namespace std::string_literals;
using Scenes = std::vector<Scene>;

std::string Commands(const std::string& members) {
  return R"({"commands": {)" + members + "}}";
}

TEST(PlayedDevice, EachMemberAndAction_DoesWhatItSays) {
  const struct {
    std::string json;
    Scenes scenes;
  } cases[] = {
      {"{}", {{0, "A?\r", "", "command \"A?\""}}},
      {R"({"commands": {"A?": "1", "": "empty", "\u00B5?": null, "B": []}, "default": "no"})",
       {{0, "A?\r\r\xB5?\rB\ra?\r", "1\rempty\rno\r"}}},
      {R"({"default_query": "what?", "default": "what!"})", {{0, "A?\rA\r?\r", "what?\rwhat!\rwhat?\r"}}},
      {R"({"default": {"cycle": ["1", "2"]}})", {{0, "A?\rA\rA?\r", "1\r2\r1\r"}}},
      {R"({"terminator": "<>", "reply_terminator": "\r\n", "commands": {"A": "\u0081"}})",
       {{0, "A<", ""}, {1, ">A<>", "\x81\r\n\x81\r\n"}}},
      {R"({"reply_terminator": "", "on_connect": "hello", "default": "x"})",
       {{0, "", "hello"}, {1, "A\r", "x"}}},
      // An exact name counts before the longest name that ends in "*".
      {R"({"commands": {"SET": "exact", "SET *": "short", "SET TEMP*": "long", "SET TEMP 5": "five"}, "default": "no"})",
       {{0, "SET\rSET \rSET X?\rSET TEMP 6\rSET TEMP 5\rSETX\rset\r",
         "exact\rshort\rshort\rlong\rfive\rno\rno\r"}}},
      {Commands(R"("A": {"cycle": ["1", "2"]}, "B*": {"cycle": ["3", null]})"),
       {{0, "A\rB1\rA\rA\rB2\rB3\r", "1\r3\r2\r1\r3\r"}}},
      {Commands(R"("A": [{"send": "1"}, {"send": "2", "end": ""}, {"send_hex": "00 ff0D"}])"),
       {{0, "A\r", "1\r2\0\xFF\r"s}}},
      {Commands(R"("E*": [{"echo": true}, {"echo": true, "end": "!"}])"),
       {{0, "E\0\xFF\r"s, "E\0\xFF\rE\0\xFF!"s}}},
      {Commands(R"("A": [{"repeat": "xyz", "bytes": 7}, {"repeat": "ab", "bytes": 1, "end": "."}])"),
       {{0, "A\r", "xyzxyzx\ra."}}},
      // The gap counts from the piece before it; what comes meanwhile waits for its turn.
      {Commands(R"("A": [{"split": "abcde", "pieces": 2, "gap_ms": 30}], "B": "b")"),
       {{0, "A\r", "abc"}, {29, "B\r", ""}, {35, "", "de\rb\r"}}},
      {Commands(R"("A": [{"trickle": "ab", "gap_ms": 5}])"),
       {{0, "A\r", "a"}, {5, "", "b"}, {9, "", ""}, {10, "", "\r"}}},
      {Commands(R"("A": [{"split": "a", "pieces": 9, "gap_ms": 1, "end": ""}])"), {{0, "A\r", "a"}}},
      {Commands(R"("A": [{"wait_ms": 5}, {"wait_ms": 6}, {"send": "1"}, {"wait_ms": 100}], "B": "2")"),
       {{1000, "A\rB\r", ""}, {1010, "", ""}, {1011, "", "1\r"}, {1110, "", ""}, {1111, "", "2\r"}}},
      {Commands(R"("A": [{"flood_ms": 10}, {"send": "end"}])"), {{0, "A\r", "[flood 10]end\r"}}},
      {Commands(R"("A": [{"send": "bye"}, {"close": true}, {"send": "no"}], "B": [{"reset": true}])"),
       {{0, "A\r", "bye\r[close]"}, {1, "B\r", "[reset]"}}},
      {Commands(
           R"("A": [{"send": "1"}, {"merge_next": true}, {"random": 1}], "B": [{"split": "23", "pieces": 3, "gap_ms": 1}])"),
       {{0, "A\r", "", "command \"A\"; 3 bytes held back for the next reply"},
        {1, "B\r", "1\r%2"},
        {9, "", "3"},
        {19, "", "\r"}}},
      {Commands(R"("A": [{"merge_next": true}, {"send": "1"}], "B": [{"repeat": "x", "bytes": 600000}])"),
       {{0, "A\r", ""}, {1, "B\r", "1\r" + std::string(600'000, 'x') + "\r"}}},
      // A description that is for the bus as well is played at a line, too.
      {R"({"gpib": {"primary": 5}, "commands": {"A": [{"status_byte": 80}, {"send": "1"}]}})",
       {{0, "A\n", "1\n"}}},
  };
  for (const auto& [json, scenes] : cases) Perform(json, scenes);
}

TEST(PlayedDevice, RandomBytes_AreTheSameForTheSameSeed) {
  const auto bytes = [](const std::string& seed) {
    const auto device = DeviceOf(ReadDescription(Commands(R"("A": [{"random": 64)" + seed + "}]"), "d"));
    return Heard(*device, 0, "A\r").out;
  };
  EXPECT_EQ(bytes("").size(), 64U);
  EXPECT_EQ(bytes(""), bytes(R"(, "seed": 1)"));
  EXPECT_NE(bytes(""), bytes(R"(, "seed": 2)"));
}

TEST(PlayedDevice, ClientsOfOneInstrument_TakeTurnsTogetherAndAreGreetedEach) {
  const auto instrument = std::make_shared<Instrument>(
      ReadInstrument(R"({"on_connect": {"cycle": ["a", "b"]}, "default": {"cycle": ["1", "2"]}})"));
  PlayedDevice first(instrument, Place::kOwnLine);
  PlayedDevice second(instrument, Place::kOwnLine);
  PlayedDevice behind(instrument, Place::kBehindAnother);
  Perform(first, {{0, "x\r", "a\r1\r"}});
  Perform(second, {{0, "x\r", "b\r2\r"}});
  Perform(behind, {{0, "x\r", "1\r"}});
}

TEST(PlayedDevice, CommandWithoutEnd_ResetsALineOfItsOwn) {
  const auto instrument = std::make_shared<Instrument>(BuiltInInstrument());
  const std::string much(kCommandLimit, 'x');
  PlayedDevice own(instrument, Place::kOwnLine);
  Perform(own, {{0, much, ""}, {1, "x", "[reset]", "command without an end"}});
  PlayedDevice behind(instrument, Place::kBehindAnother);
  Perform(behind, {{0, much + "x", ""}});
}

TEST(PlayedDevice, BuiltInInstrument_AnswersAsDocumented) {
  PlayedDevice device(std::make_shared<Instrument>(BuiltInInstrument()), Place::kOwnLine);
  Perform(device, {{0, "*IDN?\r*VER\rt\rWHAT?\rSET 5\r",
                    "KESP,7100,SIM00001,1.0\r1.0\r21.5\rERROR 113,Undefined query\r"},
                   {0, "MEAS?\rMEAS?\rMEAS?\rMEAS?\rMEAS?\r", "21.48\r21.50\r21.53\r21.51\r21.48\r"}});
}

TEST(StepsOf, ManyRepeatedBytes_AreFewLargeBlocks) {
  std::string held;
  const std::vector<Step> steps = StepsOf({SendRepeated{"0123456789ABCDEF", 1 << 30, "\r"}}, "", held);
  ASSERT_EQ(steps.size(), 2U);
  EXPECT_EQ(steps[0].bytes.size() * steps[0].times + steps[1].bytes.size(), (1U << 30) + 1);
  EXPECT_LE(steps[0].bytes.size(), 1024U * 1024);
  EXPECT_FALSE(steps[0].is_whole);
  EXPECT_EQ(steps[1].bytes.back(), '\r');
  EXPECT_TRUE(steps[1].is_whole);
}

}  // namespace
}  // namespace kesp::simulator
