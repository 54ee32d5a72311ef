// Tests of what the error box says.
#include "support/error_box.h"

#include <gtest/gtest.h>

#include "support/error_numbers.h"
#include "support/user_surface_fake.h"

namespace kesp {
namespace {

const Failure kFailure(tcp_error::ERR_TIMEOUT, L"[CKespTCP - Initialize()]", L"Connection timed out");

TEST(ErrorBoxText, FailureWithSource_HasThreeLines) {
  EXPECT_EQ(ErrorBoxText(L"attempting to edit COM port settings", kFailure),
            L"An error occurred while attempting to edit COM port settings.\r\n"
            L"Error: -2147221257 - Connection timed out\r\n"
            L"([CKespTCP - Initialize()])");
}

TEST(ErrorBoxText, FailureWithoutSource_HasTwoLines) {
  EXPECT_EQ(ErrorBoxText(L"attempting to perform query", Failure(8005, L"", L"Port already open")),
            L"An error occurred while attempting to perform query.\r\n"
            L"Error: 8005 - Port already open");
}

TEST(ErrorBoxText, NoDescription_KeepsItsPlace) {
  EXPECT_EQ(ErrorBoxText(L"attempting to perform update", Failure(0, L"", L"")),
            L"An error occurred while attempting to perform update.\r\nError: 0 - ");
}

TEST(ShowError, NoHelpFile_ShowsTheTextWithTheStopIcon) {
  UserSurfaceFake user;
  ShowError(user, L"attempting to perform query", kFailure);
  ASSERT_EQ(user.boxes().size(), 1U);
  const MessageBoxRequest& box = user.boxes().front();
  EXPECT_EQ(box.text, ErrorBoxText(L"attempting to perform query", kFailure));
  EXPECT_EQ(box.title, L"Kesp Communications Error");
  EXPECT_EQ(box.style, 16U);
  EXPECT_EQ(box.help_file, L"");
  EXPECT_EQ(box.help_context, 0);
}

TEST(ShowError, HelpFile_AddsTheHelpButtonBoundToFileAndContext) {
  UserSurfaceFake user;
  ShowError(user, L"attempting to perform query", kFailure, L"Another title", L"kesp.hlp", 4711);
  ASSERT_EQ(user.boxes().size(), 1U);
  const MessageBoxRequest& box = user.boxes().front();
  EXPECT_EQ(box.title, L"Another title");
  EXPECT_EQ(box.style, 16400U);
  EXPECT_EQ(box.help_file, L"kesp.hlp");
  EXPECT_EQ(box.help_context, 4711);
}

TEST(ShowError, ContextWithoutHelpFile_HasNoHelpButton) {
  UserSurfaceFake user;
  ShowError(user, L"attempting to perform query", kFailure, kErrorBoxTitle, L"", 4711);
  ASSERT_EQ(user.boxes().size(), 1U);
  EXPECT_EQ(user.boxes().front().style, 16U);
  EXPECT_EQ(user.boxes().front().help_context, 0);
}

}  // namespace
}  // namespace kesp
