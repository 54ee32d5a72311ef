// Which calls a plan lets fail, and how.
#include "simulator/gpib/failure_plan.h"

#include <gtest/gtest.h>

namespace kesp::simulator::gpib {
namespace {

Failure FailureOf(std::optional<CallName> call, std::optional<std::int32_t> at, std::int32_t error) {
  Failure failure;
  failure.call = call;
  failure.at = at;
  failure.error = error;
  return failure;
}

// The error of the next call of that name; -1 when it does not fail.
std::int32_t NextError(FailurePlan& plan, CallName call) {
  const std::optional<Report> report = plan.Next(call);
  return report ? report->outcome.error : -1;
}

TEST(FailurePlanTest, EmptyPlan_LetsNothingFail) {
  FailurePlan plan({});
  for (int i = 0; i < 3; ++i) EXPECT_EQ(NextError(plan, CallName::kRead), -1);
}

TEST(FailurePlanTest, NumberedFailure_CountsCallsOfItsNameOnly) {
  FailurePlan plan({FailureOf(CallName::kWrite, 2, 14)});
  EXPECT_EQ(NextError(plan, CallName::kWrite), -1);
  EXPECT_EQ(NextError(plan, CallName::kRead), -1);
  EXPECT_EQ(NextError(plan, CallName::kRead), -1);
  EXPECT_EQ(NextError(plan, CallName::kWrite), 14);
  EXPECT_EQ(NextError(plan, CallName::kWrite), -1);
}

TEST(FailurePlanTest, NumberedFailureOfAnyCall_CountsThemTogether) {
  FailurePlan plan({FailureOf(std::nullopt, 3, 14)});
  EXPECT_EQ(NextError(plan, CallName::kDevice), -1);
  EXPECT_EQ(NextError(plan, CallName::kWrite), -1);
  EXPECT_EQ(NextError(plan, CallName::kRead), 14);
  EXPECT_EQ(NextError(plan, CallName::kRead), -1);
}

TEST(FailurePlanTest, FailureWithoutNumber_IsOfEachCall) {
  FailurePlan plan({FailureOf(CallName::kRead, std::nullopt, 1)});
  for (int i = 0; i < 3; ++i) EXPECT_EQ(NextError(plan, CallName::kRead), 1);
  EXPECT_EQ(NextError(plan, CallName::kClear), -1);
}

TEST(FailurePlanTest, OfSeveralThatFit_TheFirstCounts) {
  FailurePlan plan({FailureOf(CallName::kRead, 2, 5), FailureOf(std::nullopt, std::nullopt, 6)});
  EXPECT_EQ(NextError(plan, CallName::kRead), 6);
  EXPECT_EQ(NextError(plan, CallName::kRead), 5);
  EXPECT_EQ(NextError(plan, CallName::kRead), 6);
}

TEST(FailurePlanTest, Report_HasErrorBitAndUsualResultUnlessToldOtherwise) {
  FailurePlan plan({FailureOf(std::nullopt, std::nullopt, 3)});
  const std::int32_t failed = kError | kComplete;
  const std::optional<Report> write = plan.Next(CallName::kWrite);
  ASSERT_TRUE(write);
  EXPECT_EQ(write->outcome, FailedWith(3));
  EXPECT_EQ(write->result, failed);
  const std::optional<Report> device = plan.Next(CallName::kDevice);
  ASSERT_TRUE(device);
  EXPECT_EQ(device->result, -1);
}

TEST(FailurePlanTest, Report_IsAsTold) {
  Failure failure = FailureOf(CallName::kRead, 1, 6);
  failure.status = 0x7FFF;
  failure.count = 3;
  FailurePlan plan({failure});
  const std::optional<Report> report = plan.Next(CallName::kRead);
  ASSERT_TRUE(report);
  EXPECT_EQ(report->outcome, (Outcome{0x7FFF, 6, 3}));
  EXPECT_EQ(report->result, 0x7FFF);
  failure.result = 40000;
  FailurePlan other({failure});
  EXPECT_EQ(other.Next(CallName::kRead)->result, 40000);
}

}  // namespace
}  // namespace kesp::simulator::gpib
