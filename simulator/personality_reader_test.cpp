// Whole personality files, read and refused.
#include "simulator/personality_reader.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

namespace kesp::simulator {
namespace {

std::string RefusalOf(const std::string& json) {
  try {
    ReadPersonality(json);
  } catch (const PersonalityError& error) {
    return error.what();
  }
  return "not refused";
}

std::string FirstBytes(const Answer& answer) {
  return std::get<Send>(answer.turns.at(0).at(0)).bytes;
}

TEST(PersonalityReader, EmptyFile_IsAnInstrumentThatSaysNothing) {
  const Personality personality = ReadPersonality("{}");
  EXPECT_EQ(personality.terminator, "\r");
  EXPECT_TRUE(personality.commands.empty());
  for (const Answer* answer : {&personality.on_connect, &personality.unknown, &personality.unknown_query}) {
    ASSERT_EQ(answer->turns.size(), 1U);
    EXPECT_TRUE(answer->turns[0].empty());
  }
}

TEST(PersonalityReader, WholeFile_IsRead) {
  const Personality personality = ReadPersonality(R"({
    "description": ["what", "it is"], "terminator": "\n", "reply_terminator": "\r\n",
    "on_connect": [{"send": "hello"}],
    "commands": {"A?": [{"send": "1"}], "SET *": [{"send": "ok"}], "": [{"send": "empty"}]},
    "default_query": [{"send": "what?"}], "default": [{"send": "what!"}]
  })");
  EXPECT_EQ(personality.terminator, "\n");
  EXPECT_EQ(FirstBytes(personality.on_connect), "hello\r\n");
  EXPECT_EQ(FirstBytes(personality.commands.at("A?")), "1\r\n");
  EXPECT_EQ(FirstBytes(personality.commands.at("")), "empty\r\n");
  EXPECT_EQ(FirstBytes(personality.prefixes.at("SET ")), "ok\r\n");
  EXPECT_EQ(FirstBytes(personality.unknown_query), "what?\r\n");
  EXPECT_EQ(FirstBytes(personality.unknown), "what!\r\n");
}

TEST(PersonalityReader, ReplyTerminator_CanBeNothing) {
  const Personality personality =
      ReadPersonality(R"({"reply_terminator": "", "commands": {"A?": [{"send": "1"}]}})");
  EXPECT_EQ(FirstBytes(personality.commands.at("A?")), "1");
}

TEST(PersonalityReader, DefaultAlone_CountsForQueriesToo) {
  const Personality personality = ReadPersonality(R"({"default": [{"send": "what!"}]})");
  EXPECT_EQ(FirstBytes(personality.unknown_query), "what!\r");
}

TEST(PersonalityReader, Discovery_HasNoTerminatorAndAnAnswerWhenLeftOut) {
  const auto bytes = [](const std::string& json) {
    return std::get<Datagram>(ReadPersonality(json).discovery.turns.at(0).at(0)).bytes;
  };
  EXPECT_EQ(bytes(R"({"reply_terminator": "\n", "discovery": [{"send": "here"}]})"), "here");
  EXPECT_EQ(bytes("{}").size(), 30U);
  EXPECT_TRUE(ReadPersonality(R"({"discovery": []})").discovery.turns.at(0).empty());
}

TEST(PersonalityReader, CommandNames_AreBytes) {
  const Personality personality = ReadPersonality(R"({"commands": {"\u00B5?": []}})");
  EXPECT_TRUE(personality.commands.contains("\xB5?"));
}

struct Refusal {
  std::string json;
  std::string text;
};

TEST(PersonalityReader, BadFiles_AreRefusedWithThePlace) {
  const Refusal refusals[] = {
      {"[]", "/: must be an object"},
      {R"({"comands": {}})", "/comands: is not a known field"},
      {R"({"description": 5})", "/description: must be a text or a list of texts"},
      {R"({"description": ["a", 5]})", "/description: must be a text or a list of texts"},
      {R"({"terminator": ""})", "/terminator: must not be empty"},
      {R"({"terminator": 13})", "/terminator: must be a text"},
      {R"({"reply_terminator": ["\r"]})", "/reply_terminator: must be a text"},
      {R"({"commands": []})", "/commands: must be an object"},
      {R"({"commands": {"A?": "1"}})", "/commands/A?: must be a list of actions"},
      {R"({"commands": {"A?": [{"send": 1}]}})", "/commands/A?/0/send: must be a text"},
      {R"({"commands": {"A\r": []}})",
       "/commands/A\r: holds the terminator, so that it can never be received"},
      {R"({"commands": {"\u0100": []}})",
       "/commands/\xC4\x80: may only hold characters from \\u0000 to \\u00FF (one byte each)"},
      {R"({"on_connect": [{"wait_ms": "1"}]})",
       "/on_connect/0/wait_ms: must be a whole number from 0 to 3600000"},
      {R"({"default": 1})", "/default: must be a list of actions"},
      {R"({"discovery": [{"send": "x"}, {"close": true}]})",
       "/discovery/1: is not an action of discovery (send, send_hex, random, repeat, storm, wait_ms)"},
      {R"({"default_query": [5]})", "/default_query/0: must be an object"},
      {R"({"commands": {"A?": [], "B?": [], "A?": []}})", "\"A?\": is given twice in one object"},
  };
  for (const Refusal& refusal : refusals) EXPECT_EQ(RefusalOf(refusal.json), refusal.text) << refusal.json;
}

TEST(PersonalityReader, NotJson_IsRefusedWithLineAndColumn) {
  const std::string refusal = RefusalOf("{\n  \"commands\": {,}\n}");
  EXPECT_EQ(refusal.rfind("not JSON: parse error at line 2, column 16", 0), 0U) << refusal;
  EXPECT_EQ(RefusalOf("").rfind("not JSON: parse error", 0), 0U);
  EXPECT_EQ(RefusalOf("{} {}").rfind("not JSON: parse error", 0), 0U);
  EXPECT_EQ(RefusalOf("{\"description\": \"\xFF\"}").rfind("not JSON: parse error", 0), 0U);
}

TEST(PersonalityReader, EqualNamesInDifferentObjects_AreFine) {
  EXPECT_NO_THROW(ReadPersonality(R"({"commands": {"A?": [{"send": "1"}, {"send": "2"}], "send": []}})"));
}

TEST(LoadPersonality, MissingFileAndFolder_AreRefusedWithTheirNames) {
  for (const std::string name : {"/nowhere/at-all.json", "/"}) {
    try {
      LoadPersonality(name);
      ADD_FAILURE() << name << " was read";
    } catch (const PersonalityError& error) {
      EXPECT_EQ(error.what(), name + ": cannot be read");
    }
  }
}

TEST(LoadPersonality, BadFile_IsRefusedWithItsName) {
  const std::string name = testing::TempDir() + "kesp_bad_personality.json";
  std::ofstream(name) << R"({"default": 1})";
  try {
    LoadPersonality(name);
    ADD_FAILURE() << "it was read";
  } catch (const PersonalityError& error) {
    EXPECT_EQ(error.what(), name + ": /default: must be a list of actions");
  }
  std::remove(name.c_str());
}

}  // namespace
}  // namespace kesp::simulator
