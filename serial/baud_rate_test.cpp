// Unit tests of the serial bit rates and their texts.
#include "serial/baud_rate.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace kesp {
namespace {

EKespBaudRate3 Rate(std::int32_t value) {
  return static_cast<EKespBaudRate3>(value);
}

TEST(BaudRateTest, Rate_HasItsBitsPerSecondAsName) {
  constexpr const wchar_t* kNames[] = {L"150",    L"300",    L"600",    L"1200",  L"2400",
                                       L"4800",   L"9600",   L"19200",  L"38400", L"57600",
                                       L"115200", L"230400", L"460800", L"921600"};
  std::int32_t value = 0;
  for (const wchar_t* name : kNames) {
    EXPECT_EQ(BaudRateName(Rate(value)), name);
    EXPECT_TRUE(IsBaudRate(Rate(value))) << value;
    ++value;
  }
}

TEST(BaudRateTest, AnythingElse_IsUnknown) {
  for (const std::int32_t value : {-1, -2, 14, 100, std::numeric_limits<std::int32_t>::min(),
                                   std::numeric_limits<std::int32_t>::max()}) {
    EXPECT_EQ(BaudRateName(Rate(value)), L"<unknown>") << value;
    EXPECT_EQ(IsBaudRate(Rate(value)), value == -1) << value;
  }
}

}  // namespace
}  // namespace kesp
