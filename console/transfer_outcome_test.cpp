// How a long transfer ended.
#include "console/transfer_outcome.h"

#include <gtest/gtest.h>

namespace kesp::console {
namespace {

const LibraryError kPulled("error 8020", "commCOMControl", "Error reading comm device");

TEST(TransferOf, AllThatCame_WhenItIsComplete) {
  const Transfer transfer = TransferOf("abc", false, std::nullopt, true);
  EXPECT_EQ(transfer.bytes, "abc");
  EXPECT_FALSE(transfer.aborted || transfer.failure);
}

TEST(TransferOf, WithoutItsEnd_AFailure) {
  const Transfer transfer = TransferOf("abc", false, std::nullopt, false);
  EXPECT_EQ(transfer.bytes, "abc");
  ASSERT_TRUE(transfer.failure);
  EXPECT_STREQ(transfer.failure->what(), "The transfer did not reach its end");
  EXPECT_THROW(TransferOf("", false, std::nullopt, false), LibraryError);
}

TEST(TransferOf, ToldInABox_ThatFailure) {
  EXPECT_EQ(TransferOf("abc", false, kPulled, false).failure->status(), "error 8020");
  EXPECT_THROW(TransferOf("", false, kPulled, false), LibraryError);
}

TEST(TransferOf, Aborted_NoFailureWhateverElseIsTold) {
  const Transfer transfer = TransferOf("", true, kPulled, false);
  EXPECT_TRUE(transfer.aborted);
  EXPECT_FALSE(transfer.failure);
}

}  // namespace
}  // namespace kesp::console
