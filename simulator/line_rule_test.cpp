// The settings at which an instrument understands its client: comparing, texts, reading.
#include "simulator/line_rule.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "simulator/line_rule_reader.h"
#include "simulator/personality_error.h"

namespace kesp::simulator {
namespace {

TEST(LineRule, BaudAlone_IsAllThatCounts) {
  const LineRule rule{9600, {}, {}, {}};
  EXPECT_TRUE(Suits(rule, {9600, 'N', 8, 1}));
  EXPECT_TRUE(Suits(rule, {9600, 'O', 7, 2}));
  EXPECT_FALSE(Suits(rule, {19200, 'N', 8, 1}));
}

TEST(LineRule, WholeSettings_CountInEveryPart) {
  const LineRule rule{9600, 'E', 7, 1};
  EXPECT_TRUE(Suits(rule, {9600, 'E', 7, 1}));
  EXPECT_FALSE(Suits(rule, {9600, 'N', 7, 1}));
  EXPECT_FALSE(Suits(rule, {9600, 'E', 8, 1}));
  EXPECT_FALSE(Suits(rule, {9600, 'E', 7, 2}));
  EXPECT_FALSE(Suits(rule, {9601, 'E', 7, 1}));
}

TEST(LineRule, SettingsThatAreNotWhole_CountAsFarAsAPseudoTerminalTells) {
  const LineRule rule{9600, 'E', 7, 1};
  EXPECT_TRUE(Suits(rule, {9600, 'N', 8, 1, false}));
  EXPECT_TRUE(Suits(rule, {9600, 'E', 7, 1, false}));
  EXPECT_FALSE(Suits(rule, {9600, 'O', 8, 1, false}));
  EXPECT_FALSE(Suits(rule, {9600, 'N', 8, 2, false}));
  EXPECT_FALSE(Suits(rule, {9601, 'N', 8, 1, false}));
  EXPECT_FALSE(Suits({9600, 'O', {}, {}}, {9600, 'N', 8, 1, false}));
}

TEST(LineRule, Text_HasDashesForWhatIsNotGiven) {
  EXPECT_EQ(TextOf(LineRule{9600, 'E', 7, 1}), "9600,E,7,1");
  EXPECT_EQ(TextOf(LineRule{1200, {}, {}, {}}), "1200,-,-,-");
}

TEST(ReadLineRule, Fields_AreTaken) {
  const auto read = [](const char* text) {
    return TextOf(ReadLineRule(nlohmann::json::parse(text), "/line"));
  };
  EXPECT_EQ(read(R"({"baud": 300})"), "300,-,-,-");
  EXPECT_EQ(read(R"({"baud": 19200, "parity": "M", "data_bits": 7, "stop_bits": 2})"), "19200,M,7,2");
}

TEST(ReadLineRule, Mistakes_AreRefusedWithThePlace) {
  const std::pair<const char*, const char*> mistakes[] = {
      {"9600", "/line: must be an object"},
      {"{}", "/line/baud: is missing"},
      {R"({"baud": 49})", "/line/baud: must be a whole number from 50 to 4000000"},
      {R"({"baud": 50, "parity": "X"})", "/line/parity: must be N, E, O, M or S"},
      {R"({"baud": 50, "parity": ""})", "/line/parity: must be N, E, O, M or S"},
      {R"({"baud": 50, "data_bits": 9})", "/line/data_bits: must be a whole number from 5 to 8"},
      {R"({"baud": 50, "stop_bits": 3})", "/line/stop_bits: must be a whole number from 1 to 2"},
      {R"({"baud": 50, "flow": "none"})", "/line/flow: is not a known field"},
  };
  for (const auto& [json, text] : mistakes) {
    try {
      ReadLineRule(nlohmann::json::parse(json), "/line");
      ADD_FAILURE() << json << " was taken";
    } catch (const PersonalityError& error) {
      EXPECT_STREQ(error.what(), text);
    }
  }
}

}  // namespace
}  // namespace kesp::simulator
