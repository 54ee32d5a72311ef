// Which command matches what, and cycles of replies.
#include "simulator/instrument.h"

#include <gtest/gtest.h>

#include "simulator/description.h"

namespace kesp::simulator {
namespace {

// The text of a reply with one "send"; "nothing" for an empty list.
std::string Reply(const ActionList& actions) {
  if (actions.empty()) return "nothing";
  return std::get<Send>(actions.at(0)).bytes;
}

TEST(Instrument, Discovered_GoesRoundApartFromCommands) {
  Instrument instrument(ReadInstrument(R"({
    "discovery": {"cycle": [[], [{"send": "1"}, {"send": "2"}]]},
    "commands": {"A?": {"cycle": [[{"send": "a"}], [{"send": "b"}]]}}
  })"));
  EXPECT_EQ(instrument.Discovered().size(), 0U);
  EXPECT_EQ(Reply(instrument.Command("A?")), "a\r");
  EXPECT_EQ(instrument.Discovered().size(), 2U);
  EXPECT_EQ(instrument.Discovered().size(), 0U);
  EXPECT_EQ(Reply(instrument.Command("A?")), "b\r");
}

TEST(Instrument, Command_ExactThenLongestPrefixThenDefault) {
  Instrument instrument(ReadInstrument(R"({
    "reply_terminator": "",
    "commands": {"SET": [{"send": "exact"}], "SET *": [{"send": "short"}], "SET TEMP*": [{"send": "long"}],
                 "SET TEMP 5": [{"send": "exact five"}]},
    "default_query": [{"send": "query"}], "default": [{"send": "other"}]
  })"));
  EXPECT_EQ(Reply(instrument.Command("SET")), "exact");
  EXPECT_EQ(Reply(instrument.Command("SET ")), "short");
  EXPECT_EQ(Reply(instrument.Command("SET X?")), "short");
  EXPECT_EQ(Reply(instrument.Command("SET TEMP 6")), "long");
  EXPECT_EQ(Reply(instrument.Command("SET TEMP 5")), "exact five");
  EXPECT_EQ(Reply(instrument.Command("SETX")), "other");
  EXPECT_EQ(Reply(instrument.Command("set")), "other");
  EXPECT_EQ(Reply(instrument.Command("")), "other");
  EXPECT_EQ(Reply(instrument.Command("?")), "query");
}

TEST(Instrument, Cycle_GoesRoundForEachCommandByItself) {
  Instrument instrument(ReadInstrument(R"({
    "reply_terminator": "",
    "on_connect": {"cycle": [[{"send": "first"}], []]},
    "commands": {"A?": {"cycle": [[{"send": "1"}], [{"send": "2"}]]}, "B*": {"cycle": [[{"send": "3"}], []]}}
  })"));
  EXPECT_EQ(Reply(instrument.Connected()), "first");
  EXPECT_EQ(Reply(instrument.Command("A?")), "1");
  EXPECT_EQ(Reply(instrument.Command("B1")), "3");
  EXPECT_EQ(Reply(instrument.Command("A?")), "2");
  EXPECT_EQ(Reply(instrument.Command("A?")), "1");
  EXPECT_EQ(Reply(instrument.Command("B2")), "nothing");
  EXPECT_EQ(Reply(instrument.Connected()), "nothing");
}

TEST(Instrument, BuiltInInstrument_AnswersAsDocumented) {
  Instrument instrument(BuiltInInstrument());
  EXPECT_EQ(instrument.terminator(), "\r");
  EXPECT_EQ(Reply(instrument.Connected()), "nothing");
  EXPECT_EQ(Reply(instrument.Command("*IDN?")), "KESP,7100,SIM00001,1.0\r");
  EXPECT_EQ(Reply(instrument.Command("*VER")), "1.0\r");
  EXPECT_EQ(Reply(instrument.Command("t")), "21.5\r");
  for (int i = 0; i < 5; ++i) EXPECT_NEAR(std::stod(Reply(instrument.Command("MEAS?"))), 21.5, 0.1);
  EXPECT_EQ(Reply(instrument.Command("WHAT?")), "ERROR 113,Undefined query\r");
  EXPECT_EQ(Reply(instrument.Command("SET 5")), "nothing");
}

}  // namespace
}  // namespace kesp::simulator
