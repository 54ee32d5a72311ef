// Timeouts within the ranges of the transports.
#include "console/timeouts.h"

#include <gtest/gtest.h>

#include "console/usage_error.h"

namespace kesp::console {
namespace {

TEST(TcpTimeout, Sixteen_BitsAreTaken) {
  EXPECT_EQ(TcpTimeout(0), 0);
  EXPECT_EQ(TcpTimeout(32767), 32767);
  EXPECT_THROW(TcpTimeout(32768), UsageError);
}

TEST(IeeeTimeoutCode, Time_IsThatOrTheNextLongerOne) {
  const std::pair<int, int> cases[] = {
      {0, 1},       {1, 5},        {2, 6},        {3, 6},        {4, 7},         {10, 7},    {11, 8},
      {250, 10},    {300, 10},     {301, 11},     {1000, 11},    {1001, 12},     {3000, 12}, {10'000, 13},
      {30'000, 14}, {100'000, 15}, {300'000, 16}, {300'001, 17}, {1'000'000, 17}};
  for (const auto& [milliseconds, code] : cases)
    EXPECT_EQ(IeeeTimeoutCode(milliseconds), code) << milliseconds;
  EXPECT_THROW(IeeeTimeoutCode(1'000'001), UsageError);
}

}  // namespace
}  // namespace kesp::console
