// Tests of the queue of bytes to be sent.
#include "network/send_queue.h"

#include <gtest/gtest.h>

namespace kesp {
namespace {

TEST(SendQueueTest, TookFromFront_LeavesTheRest) {
  SendQueue queue;
  EXPECT_EQ(queue.Unsent(), "");
  queue.Add("ABC");
  queue.TookFromFront(1);
  EXPECT_EQ(queue.Unsent(), "BC");
  queue.Add("D");
  EXPECT_EQ(queue.Unsent(), "BCD");
  queue.TookFromFront(3);
  EXPECT_EQ(queue.Unsent(), "");
  queue.Add("E");
  EXPECT_EQ(queue.Unsent(), "E");
}

TEST(SendQueueTest, Report_CountsSinceTheLastReport) {
  SendQueue queue;
  SendProgress progress = queue.Report();
  EXPECT_EQ(progress.sent, 0);
  EXPECT_EQ(progress.remaining, 0);
  queue.TookDirectly(5);
  queue.Add("ABC");
  queue.TookFromFront(1);
  progress = queue.Report();
  EXPECT_EQ(progress.sent, 6);
  EXPECT_EQ(progress.remaining, 2);
  queue.TookFromFront(2);
  progress = queue.Report();
  EXPECT_EQ(progress.sent, 2);
  EXPECT_EQ(progress.remaining, 0);
  EXPECT_EQ(queue.Report().sent, 0);
}

TEST(SendQueueTest, Report_BeyondThirtyTwoBits_Saturates) {
  SendQueue queue;
  queue.TookDirectly(std::size_t{3} * 1000 * 1000 * 1000);
  EXPECT_EQ(queue.Report().sent, INT32_MAX);
}

TEST(SendQueueTest, Clear_ForgetsBytesAndReport) {
  SendQueue queue;
  queue.Add("ABC");
  queue.TookFromFront(1);
  queue.Clear();
  EXPECT_EQ(queue.Unsent(), "");
  EXPECT_EQ(queue.Report().sent, 0);
}

}  // namespace
}  // namespace kesp
