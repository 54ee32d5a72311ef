// The order in which the library tries, and how many attempts there can be.
#include "console/detection_plan.h"

#include <gtest/gtest.h>

namespace kesp::console {
namespace {

const std::vector<int> kRates = {2400, 4800, 9600, 19200};

TEST(DetectionPlan, Rates_ThePresentOneFirstThenFromTheHighestDown) {
  const DetectionPlan plan = DetectionPlan::OfRates(9600, kRates, DetectLevel::kAll);
  EXPECT_EQ(plan.StepAt("9600 baud", "*IDN?").number, 1);
  EXPECT_EQ(plan.StepAt("9600 baud", "*VER").number, 2);
  EXPECT_EQ(plan.StepAt("19200 baud", "*IDN?").number, 3);
  EXPECT_EQ(plan.StepAt("4800 baud", "*VER").number, 6);
  EXPECT_EQ(plan.StepAt("2400 baud", "t").number, 9);
  EXPECT_EQ(plan.StepAt("2400 baud", "t").of, 9);
  EXPECT_EQ(plan.StepAt("4800 baud", "t").number, 0) << "only below";
}

TEST(DetectionPlan, Level_DecidesHowManyCommandsThereAre) {
  EXPECT_EQ(DetectionPlan::OfRates(9600, kRates, DetectLevel::kScpi).StepAt("2400 baud", "*IDN?").of, 4);
  EXPECT_EQ(DetectionPlan::OfRates(9600, kRates, DetectLevel::kCommon).StepAt("2400 baud", "*IDN?").of, 8);
}

TEST(DetectionPlan, PresentRateOutsideTheRange_IsTriedAllTheSame) {
  const DetectionPlan plan = DetectionPlan::OfRates(300, kRates, DetectLevel::kScpi);
  EXPECT_EQ(plan.StepAt("300 baud", "*IDN?").number, 1);
  EXPECT_EQ(plan.StepAt("2400 baud", "*IDN?").number, 5);
}

TEST(DetectionPlan, HostAndDevices) {
  const DetectionStep host = DetectionPlan::OfHost("10.0.0.7", DetectLevel::kAll).StepAt("10.0.0.7", "*VER");
  EXPECT_EQ(host.where, "10.0.0.7");
  EXPECT_EQ(host.command, "*VER");
  EXPECT_EQ(host.number, 2);
  EXPECT_EQ(host.of, 3);
  const DetectionPlan bus = DetectionPlan::OfDevices(1, 30, DetectLevel::kAll);
  EXPECT_EQ(bus.StepAt("gpib:1", "t").number, 3);
  EXPECT_EQ(bus.StepAt("gpib:30", "t").number, 90);
  EXPECT_EQ(bus.StepAt("gpib:30", "t").of, 90);
}

}  // namespace
}  // namespace kesp::console
