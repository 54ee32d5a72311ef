// Unit tests of the identification commands by level.
#include "support/detection_commands.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace kesp {
namespace {

std::vector<std::wstring> Commands(std::int32_t level) {
  const auto commands = DetectionCommands(static_cast<EDetectLevel>(level));
  return {commands.begin(), commands.end()};
}

TEST(DetectionCommandsTest, EachLevel_AddsItsCommandBehindTheOthers) {
  using Expected = std::vector<std::wstring>;
  EXPECT_EQ(Commands(1), (Expected{L"*IDN?"}));
  EXPECT_EQ(Commands(2), (Expected{L"*IDN?", L"*VER"}));
  EXPECT_EQ(Commands(3), (Expected{L"*IDN?", L"*VER", L"t"}));
}

TEST(DetectionCommandsTest, LevelsThatDoNotExist_AreNoneBelowAndAllAbove) {
  EXPECT_TRUE(Commands(0).empty());
  EXPECT_TRUE(Commands(-1).empty());
  EXPECT_EQ(Commands(4), Commands(3));
  EXPECT_EQ(Commands(1000), Commands(3));
}

}  // namespace
}  // namespace kesp
