// Tests of what the error box says.
#include "support/error_box.h"

#include <gtest/gtest.h>

#include "support/error_numbers.h"
#include "support/user_surface_fake.h"

namespace kesp {
namespace {

const Failure kFailure(tcp_error::ERR_TIMEOUT, L"[CKespTCP - Initialize()]", L"Connection timed out");

TEST(ErrorBoxTextTest, SourceOrNone_HasThreeLinesOrTwo) {
  EXPECT_EQ(ErrorBoxText(L"attempting to edit COM port settings", kFailure),
            L"An error occurred while attempting to edit COM port settings.\r\n"
            L"Error: -2147221257 - Connection timed out\r\n"
            L"([CKespTCP - Initialize()])");
  EXPECT_EQ(ErrorBoxText(L"attempting to perform query", Failure(8005, L"", L"Port already open")),
            L"An error occurred while attempting to perform query.\r\n"
            L"Error: 8005 - Port already open");
  EXPECT_EQ(ErrorBoxText(L"attempting to perform update", Failure(0, L"", L"")),
            L"An error occurred while attempting to perform update.\r\nError: 0 - ");
}

TEST(ShowErrorTest, HelpFile_AddsTheHelpButtonBoundToFileAndContext) {
  UserSurfaceFake user;
  const std::wstring text = ErrorBoxText(L"attempting to perform query", kFailure);
  ShowError(user, L"attempting to perform query", kFailure);
  ShowError(user, L"attempting to perform query", kFailure, kErrorBoxTitle, L"", 4711);
  ShowError(user, L"attempting to perform query", kFailure, L"Another title", L"kesp.hlp", 4711);
  const MessageBoxRequest without_help{text, L"Kesp Communications Error", 16, L"", 0};
  EXPECT_EQ(user.TakeBoxes(),
            (Boxes{without_help, without_help, {text, L"Another title", 16400, L"kesp.hlp", 4711}}));
}

}  // namespace
}  // namespace kesp
