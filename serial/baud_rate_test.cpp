// Unit tests of the serial bit rates and their texts.
#include "serial/baud_rate.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace kesp {
namespace {

struct NamedRate {
  std::int32_t value;
  const wchar_t* name;
};

constexpr NamedRate kRates[] = {
    {0, L"150"},     {1, L"300"},     {2, L"600"},     {3, L"1200"},    {4, L"2400"},
    {5, L"4800"},    {6, L"9600"},    {7, L"19200"},   {8, L"38400"},   {9, L"57600"},
    {10, L"115200"}, {11, L"230400"}, {12, L"460800"}, {13, L"921600"},
};

constexpr std::int32_t kNotRates[] = {-2, 14, 100, std::numeric_limits<std::int32_t>::min(),
                                      std::numeric_limits<std::int32_t>::max()};

EKespBaudRate3 Rate(std::int32_t value) {
  return static_cast<EKespBaudRate3>(value);
}

TEST(BaudRateTest, NameOfRate_IsBitsPerSecondInDecimal) {
  for (const NamedRate& rate : kRates) EXPECT_EQ(BaudRateName(Rate(rate.value)), rate.name) << rate.value;
}

TEST(BaudRateTest, NameOfAnythingElse_IsUnknown) {
  EXPECT_EQ(BaudRateName(EKespBaudRate3::brNone), L"<unknown>");
  for (const std::int32_t value : kNotRates) EXPECT_EQ(BaudRateName(Rate(value)), L"<unknown>") << value;
}

TEST(BaudRateTest, EveryEnumerator_IsBaudRate) {
  EXPECT_TRUE(IsBaudRate(EKespBaudRate3::brNone));
  for (const NamedRate& rate : kRates) EXPECT_TRUE(IsBaudRate(Rate(rate.value))) << rate.value;
}

TEST(BaudRateTest, ValueWithoutEnumerator_IsNotBaudRate) {
  for (const std::int32_t value : kNotRates) EXPECT_FALSE(IsBaudRate(Rate(value))) << value;
}

}  // namespace
}  // namespace kesp
