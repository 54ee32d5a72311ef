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
  EXPECT_EQ(user_.TakeBoxes(), Boxes{});
}

TEST_F(ErrorTrapTest, OperationThrows_FalseAndABoxTellsWhatever) {
  EXPECT_FALSE(Run([]() -> bool { throw Failure(8005, L"[X - Y()]", L"Port already open"); }));
  EXPECT_FALSE(Run([]() -> bool { throw Failure(7, L"", L"Out of memory"); }));
  EXPECT_FALSE(Run([]() -> bool { throw std::runtime_error("odd"); }));
  EXPECT_FALSE(Run([]() -> bool { throw std::bad_alloc(); }));
  EXPECT_FALSE(Run([]() -> bool { throw 1; }));
  EXPECT_EQ(user_.TakeBoxes(),
            (Boxes{ErrorBox(L"perform query", L"8005 - Port already open\r\n([X - Y()])"),
                   ErrorBox(L"perform query", L"7 - Out of memory"),
                   ErrorBox(L"perform query", L"51 - Internal error (odd)\r\n(KespCommObj)"),
                   ErrorBox(L"perform query", L"7 - Out of memory\r\n(KespCommObj)"),
                   ErrorBox(L"perform query", L"51 - Internal error\r\n(KespCommObj)")}));
}

}  // namespace
}  // namespace kesp
