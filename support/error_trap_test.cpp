// Unit tests of the trap around the operations that face the user.
#include "support/error_trap.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "support/error_box.h"
#include "support/failure.h"
#include "support/user_surface_fake.h"

namespace kesp {
namespace {

class ErrorTrapTest : public testing::Test {
 protected:
  bool Run(const std::function<bool()>& operation) {
    return RunTrapped(user_, L"attempting to perform query", operation);
  }

  UserSurfaceFake user_;
};

TEST_F(ErrorTrapTest, OperationReturns_ResultHandedOnWithoutBox) {
  EXPECT_TRUE(Run([] { return true; }));
  EXPECT_FALSE(Run([] { return false; }));
  EXPECT_TRUE(user_.boxes().empty());
}

TEST_F(ErrorTrapTest, OperationFails_BoxTellsNumberDescriptionAndSource) {
  EXPECT_FALSE(Run([]() -> bool { throw Failure(8005, L"[X - Y()]", L"Port already open"); }));
  ASSERT_EQ(user_.boxes().size(), 1u);
  EXPECT_EQ(user_.boxes()[0].title, L"Kesp Communications Error");
  EXPECT_EQ(user_.boxes()[0].text,
            L"An error occurred while attempting to perform query.\r\nError: 8005 - Port already open\r\n"
            L"([X - Y()])");
  EXPECT_EQ(user_.boxes()[0].style, kStopIcon);
}

TEST_F(ErrorTrapTest, FailureWithoutSource_BoxHasNoParentheses) {
  EXPECT_FALSE(Run([]() -> bool { throw Failure(7, L"", L"Out of memory"); }));
  ASSERT_EQ(user_.boxes().size(), 1u);
  EXPECT_EQ(user_.boxes()[0].text,
            L"An error occurred while attempting to perform query.\r\nError: 7 - Out of memory");
}

TEST_F(ErrorTrapTest, OtherExceptions_AreTrappedToo) {
  EXPECT_FALSE(Run([]() -> bool { throw std::runtime_error("odd"); }));
  EXPECT_FALSE(Run([]() -> bool { throw std::bad_alloc(); }));
  EXPECT_FALSE(Run([]() -> bool { throw 1; }));
  ASSERT_EQ(user_.boxes().size(), 3u);
  EXPECT_NE(user_.boxes()[0].text.find(L"Error: 51 - Internal error (odd)"), std::wstring::npos);
  EXPECT_NE(user_.boxes()[1].text.find(L"Error: 7 - Out of memory"), std::wstring::npos);
  EXPECT_NE(user_.boxes()[2].text.find(L"Error: 51 - "), std::wstring::npos);
}

}  // namespace
}  // namespace kesp
