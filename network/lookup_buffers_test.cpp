// Unit tests of the buffers of host look-ups that were given up.
#include "network/lookup_buffers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace kesp {
namespace {

TEST(LookupBuffersTest, GivenUpWithoutEnd_AreAsManyAsMayBeAndTheOldestIsUsedFirst) {
  LookupBuffers buffers;
  std::vector<LookupBuffer*> seen;
  for (int i = 0; i < 3 * LookupBuffers::kMost; ++i) {
    std::unique_ptr<LookupBuffer> buffer = buffers.Take();
    // As the system does, behind the time too.
    std::fill(std::begin(buffer->bytes), std::end(buffer->bytes), 'x');
    if (i >= LookupBuffers::kMost) {
      EXPECT_EQ(buffer.get(), seen[static_cast<std::size_t>(i - LookupBuffers::kMost)]) << i;
    }
    seen.push_back(buffer.get());
    buffers.GiveUp(std::move(buffer));
  }
  // They are nobody's any more; a test leaves nothing behind.
  for (int i = 0; i < LookupBuffers::kMost; ++i) delete seen[static_cast<std::size_t>(i)];
}

TEST(LookupBuffersTest, Finished_IsFreedAndNotUsedAgain) {
  LookupBuffers buffers;
  for (int i = 0; i < 2 * LookupBuffers::kMost; ++i) EXPECT_NE(buffers.Take(), nullptr);
}

}  // namespace
}  // namespace kesp
