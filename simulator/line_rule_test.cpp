// The settings at which an instrument understands its client: comparing, texts.
#include "simulator/line_rule.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace kesp::simulator
