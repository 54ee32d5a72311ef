// Tests of lists of windows, and of the windows that wait for a dialog, when memory is out.
#include "support/thread_modal_win.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <new>

#include "support/failing_allocation_fake.h"
#include "support/window_list_win.h"

namespace kesp {
namespace {

class ThreadModalTest : public testing::Test {
 protected:
  ThreadModalTest() {
    for (HWND& window : windows_) {
      window = CreateWindowW(L"STATIC", L"client", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 50, 50, nullptr,
                             nullptr, nullptr, nullptr);
    }
  }
  ~ThreadModalTest() override {
    for (HWND window : windows_) DestroyWindow(window);
  }

  bool AllEnabled() const {
    return std::all_of(std::begin(windows_), std::end(windows_),
                       [](HWND window) { return IsWindowEnabled(window) != FALSE; });
  }

  // Lets each allocation of the operation fail in turn; how many there are.
  int FailEach(const std::function<void()>& operation) const {
    for (int nth = 1;; ++nth) {
      try {
        const FailingAllocation failing(nth);
        operation();
        return nth - 1;
      } catch (const std::bad_alloc&) {
        EXPECT_TRUE(AllEnabled()) << nth;
      }
    }
  }

  HWND windows_[3] = {};
};

TEST_F(ThreadModalTest, MemoryIsOut_ThrowsAndDisablesNothing) {
  EXPECT_GT(FailEach([this] {
              const ThreadModal modal(windows_[0]);
              EXPECT_TRUE(IsWindowEnabled(windows_[0]));
              EXPECT_FALSE(IsWindowEnabled(windows_[2]));
            }),
            2);
  EXPECT_TRUE(AllEnabled());
}

TEST_F(ThreadModalTest, MemoryIsOutForAList_ThrowsWhenTheSystemHasReturned) {
  for (const int id : {1, 2, 3}) {
    CreateWindowW(L"STATIC", L"", WS_CHILD, 0, 0, 5, 5, windows_[0],
                  reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), nullptr, nullptr);
  }
  std::size_t children = 0;
  EXPECT_GT(FailEach([&] { children = DescendantsOf(windows_[0]).size(); }), 1);
  EXPECT_EQ(children, 3U);
}

}  // namespace
}  // namespace kesp
