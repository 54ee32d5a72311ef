// Actions as a schedule, with plain numbers for the time.
#include "simulator/schedule.h"

#include <gtest/gtest.h>

#include "simulator/bytes_text.h"

namespace kesp::simulator {
namespace {

using std::chrono::milliseconds;
using namespace std::string_literals;

// The steps as one text, such as `"AB" 30:"C"+ close`: a pause before a colon, a star and how often, a plus
// after what is no whole reply.
std::string TextOf(const std::vector<Step>& steps) {
  std::string text;
  for (const Step& step : steps) {
    text += text.empty() ? "" : " ";
    if (step.pause.count() > 0) text += std::to_string(step.pause.count()) + ":";
    if (step.flood) {
      text += "flood " + std::to_string(step.flood->count());
    } else if (!step.bytes.empty()) {
      text += Quoted(step.bytes);
    }
    if (step.times != 1) text += "*" + std::to_string(step.times);
    if (!step.is_whole) text += "+";
    if (step.ending) text += *step.ending == Ending::kClose ? "close" : "reset";
  }
  return text;
}

TEST(StepsOf, EachList_HasItsSteps) {
  const struct {
    ActionList actions;
    std::string steps;
  } cases[] = {
      {{}, ""},
      {{Send{""}}, ""},
      {{Send{"21.5\r"}}, R"("21.5\r")"},
      {{SendPieces{"ABCDE", 2, milliseconds(30)}}, R"("AB"+ 30:"CDE")"},
      {{SendPieces{"AB\r", 9, milliseconds(1)}}, R"("A"+ 1:"B"+ 1:"\r")"},
      {{SendRepeated{"ABC", 7, "\r"}}, R"("ABCABCA\r")"},
      {{SendRepeated{"ABC", 2, ""}}, "\"AB\""},
      {{Echo{"\r"}}, R"("E\x00\xFF\r")"},
      {{Wait{milliseconds(5)}, Wait{milliseconds(6)}, Send{"A"}}, "11:\"A\""},
      {{Send{"A"}, Wait{milliseconds(5)}}, "\"A\" 5:"},
      {{Wait{milliseconds(5)}, Flood{milliseconds(10)}}, "5:flood 10"},
      {{Send{"A"}, Wait{milliseconds(5)}, Ending::kClose, Send{"B"}}, "\"A\" 5:close"},
      {{Ending::kReset, Send{"B"}}, "reset"},
  };
  for (const auto& [actions, steps] : cases) EXPECT_EQ(TextOf(StepsOf(actions, "E\0\xFF"s)), steps);
}

TEST(StepsOf, ManyRepeatedBytes_AreFewLargeBlocks) {
  const std::vector<Step> steps = StepsOf({SendRepeated{"0123456789ABCDEF", 1 << 30, "\r"}}, "");
  ASSERT_EQ(steps.size(), 2U);
  EXPECT_EQ(steps[0].bytes.size() * steps[0].times + steps[1].bytes.size(), (1U << 30) + 1);
  EXPECT_LE(steps[0].bytes.size(), 1024U * 1024);
  EXPECT_LE(steps[0].times, 10'000U);
  EXPECT_EQ(steps[1].bytes.back(), '\r');
}

TEST(StepsOf, HeldBytes_GoWithTheNextPieceWhereverHoldingStands) {
  std::string held;
  const auto steps = [&held](const ActionList& actions) { return TextOf(StepsOf(actions, "C", held)); };
  EXPECT_EQ(steps({Send{"A"}, HoldForNext{}, Send{"B"}}), "");
  EXPECT_EQ(steps({Echo{""}, HoldForNext{}}), "");
  EXPECT_EQ(held, "ABC");
  EXPECT_EQ(steps({}), "");
  EXPECT_EQ(steps({SendPieces{"DE", 2, milliseconds(1)}}), R"("ABCD"+ 1:"E")");
  EXPECT_EQ(held, "");
}

}  // namespace
}  // namespace kesp::simulator
