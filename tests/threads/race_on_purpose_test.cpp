// A data race on purpose, which shows that ThreadSanitizer would tell of others. Not run by itself.
#include <gtest/gtest.h>

#include "tests/threads/together.h"

namespace kesp::threads {
namespace {

TEST(DISABLED_RaceOnPurposeTest, TwoThreadsCountWithoutALock) {
  long count = 0;
  RunTogether(2, [&](int) {
    for (int i = 0; i < 1000; ++i) ++count;
  });
  EXPECT_GT(count, 0);
}

}  // namespace
}  // namespace kesp::threads
