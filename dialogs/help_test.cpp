// Tests of opening the help.
#include "dialogs/help.h"

#include <gtest/gtest.h>

#include <vector>

#include "dialogs/editing.h"
#include "support/user_surface_fake.h"

namespace kesp {
namespace {

using HelpCalls = std::vector<UserSurfaceFake::HelpCall>;

constexpr HelpTopic kOwnTopic = HelpTopic::kRFModemSettings;

TEST(ShowContextHelpTest, FileWasNamed_TopicIsOpenedInItUnderTheBusyPointer) {
  UserSurfaceFake user;
  user.own_help_file = L"C:\\own.chm";
  user.SetHelpFile(L"C:\\kesp.hlp");
  EXPECT_TRUE(ShowContextHelp(user, 4711, kOwnTopic));
  EXPECT_EQ(user.help_calls(), (HelpCalls{{L"C:\\kesp.hlp", 1, 4711, MousePointer::kBusy}}));
  EXPECT_EQ(user.pointer(), MousePointer::kDefault);
}

TEST(ShowContextHelpTest, NoFileWasNamed_IsTheDialogsOwnTopicWhateverTheContext) {
  UserSurfaceFake user;
  user.own_help_file = L"C:\\own.chm";
  EXPECT_TRUE(ShowContextHelp(user, 4711, kOwnTopic));
  EXPECT_EQ(user.help_calls(), (HelpCalls{{L"C:\\own.chm", 1, 9002, MousePointer::kBusy}}));
  EXPECT_EQ(user.pointer(), MousePointer::kDefault);
  user.help_answer = false;
  EXPECT_FALSE(ShowContextHelp(user, 4711, kOwnTopic));
}

TEST(ShowContextHelpTest, NeitherFileIsThere_IsTheContextOfAFileWithoutAName) {
  UserSurfaceFake user;
  EXPECT_TRUE(ShowContextHelp(user, 4711, kOwnTopic));
  EXPECT_EQ(user.help_calls(), (HelpCalls{{L"", 1, 4711, MousePointer::kBusy}}));
}

TEST(CallHelpTest, AnyCommandAndTopic_ArePassedOnWithTheirBits) {
  UserSurfaceFake user;
  ShowContextHelp(user, -2, kOwnTopic);
  EXPECT_TRUE(CallHelp(user, 2, 9));
  EXPECT_EQ(user.help_calls(),
            (HelpCalls{{L"", 1, 0xFFFFFFFE, MousePointer::kBusy}, {L"", 2, 9, MousePointer::kBusy}}));
}

TEST(CallHelpTest, ViewerRefuses_IsFalseWithTheDefaultPointer) {
  UserSurfaceFake user;
  user.help_answer = false;
  EXPECT_FALSE(CallHelp(user, 1, 1));
  EXPECT_FALSE(ShowContextHelp(user, 1, kOwnTopic));
  EXPECT_EQ(user.help_calls().size(), 2U);
  EXPECT_EQ(user.pointer(), MousePointer::kDefault);
}

TEST(CallHelpTest, ViewerFails_IsFalseInSilenceAndThePointerStaysBusyUntilTheNextMessage) {
  for (const wchar_t* own_help_file : {L"", L"C:\\own.chm"}) {
    UserSurfaceFake user;
    user.own_help_file = own_help_file;
    user.help_failure = true;
    EXPECT_FALSE(ShowContextHelp(user, 1, kOwnTopic));
    EXPECT_TRUE(user.boxes().empty());
    EXPECT_EQ(user.pointer(), MousePointer::kBusy);
    ShowMessage(user, L"A", L"B");
    EXPECT_EQ(user.pointer(), MousePointer::kDefault);
  }
}

}  // namespace
}  // namespace kesp
