// Tests of opening the help.
#include "dialogs/help.h"

#include <gtest/gtest.h>

#include <vector>

#include "dialogs/editing.h"
#include "support/user_surface_fake.h"

namespace kesp {
namespace {

using HelpCalls = std::vector<UserSurfaceFake::HelpCall>;

TEST(ShowContextHelpTest, Topic_IsOpenedInTheHelpFileUnderTheBusyPointer) {
  UserSurfaceFake user;
  user.SetHelpFile(L"C:\\kesp.hlp");
  EXPECT_TRUE(ShowContextHelp(user, 4711));
  EXPECT_EQ(user.help_calls(), (HelpCalls{{L"C:\\kesp.hlp", 1, 4711, MousePointer::kBusy}}));
  EXPECT_EQ(user.pointer(), MousePointer::kDefault);
}

TEST(CallHelpTest, AnyCommandAndTopic_ArePassedOnWithTheirBits) {
  UserSurfaceFake user;
  ShowContextHelp(user, -2);
  EXPECT_TRUE(CallHelp(user, 2, 9));
  EXPECT_EQ(user.help_calls(),
            (HelpCalls{{L"", 1, 0xFFFFFFFE, MousePointer::kBusy}, {L"", 2, 9, MousePointer::kBusy}}));
}

TEST(CallHelpTest, ViewerRefuses_IsFalseWithTheDefaultPointer) {
  UserSurfaceFake user;
  user.help_answer = false;
  EXPECT_FALSE(CallHelp(user, 1, 1));
  EXPECT_FALSE(ShowContextHelp(user, 1));
  EXPECT_EQ(user.help_calls().size(), 2U);
  EXPECT_EQ(user.pointer(), MousePointer::kDefault);
}

TEST(CallHelpTest, ViewerFails_IsFalseInSilenceAndThePointerStaysBusyUntilTheNextMessage) {
  UserSurfaceFake user;
  user.help_failure = true;
  EXPECT_FALSE(CallHelp(user, 1, 1));
  EXPECT_TRUE(user.boxes().empty());
  EXPECT_EQ(user.pointer(), MousePointer::kBusy);
  ShowMessage(user, L"A", L"B");
  EXPECT_EQ(user.pointer(), MousePointer::kDefault);
}

}  // namespace
}  // namespace kesp
