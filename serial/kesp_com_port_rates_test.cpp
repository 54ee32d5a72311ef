// Unit tests of the serial transport's bit rate and its allowed range.
#include <cstdint>

#include "serial/kesp_com_port_fixture.h"
#include "support/error_numbers.h"

namespace kesp {
namespace {

TEST_F(CKespCOMPort3Test, NewObject_RefusesEveryRateButNone) {
  for (std::int32_t value = 0; value <= 13; ++value) {
    ExpectRefused(&CKespCOMPort3::SetBaudRate, Rate(value), com_port_error::ERR_BAUD_RATE_NOT_SUPPORTED,
                  L"CKespCOMPort3 - BaudRate", L"Baud rate not supported.");
  }
  port_.SetBaudRate(EKespBaudRate3::brNone);
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::brNone);
}

TEST_F(CKespCOMPort3Test, NewObject_RefusesMinimumBeforeMaximum) {
  for (std::int32_t value = 0; value <= 13; ++value) {
    ExpectRefused(&CKespCOMPort3::SetMinBaudRate, Rate(value), com_port_error::ERR_INVALID_BAUD_RATE,
                  L"CKespCOMPort3 - MaxBaudRate",
                  L"Cannot set minimum baud rate higher than maximum baud rate.");
  }
}

TEST_F(CKespCOMPort3Test, MaximumThenMinimumThenRate_AreStored) {
  AllowRates(6, 10, 7);
  EXPECT_EQ(port_.MaxBaudRate(), EKespBaudRate3::br115200);
  EXPECT_EQ(port_.MinBaudRate(), EKespBaudRate3::br9600);
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br19200);
}

TEST_F(CKespCOMPort3Test, MaximumAlone_AllowsRatesUpToItAndNone) {
  port_.SetMaxBaudRate(EKespBaudRate3::br9600);
  for (std::int32_t value = -1; value <= 6; ++value) {
    port_.SetBaudRate(Rate(value));
    EXPECT_EQ(port_.BaudRate(), Rate(value));
  }
  ExpectRefused(&CKespCOMPort3::SetBaudRate, EKespBaudRate3::br19200,
                com_port_error::ERR_BAUD_RATE_NOT_SUPPORTED, L"CKespCOMPort3 - BaudRate",
                L"Baud rate not supported.");
}

TEST_F(CKespCOMPort3Test, RateAtEndsOfRange_IsStored) {
  AllowRates(4, 8, 4);
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br2400);
  port_.SetBaudRate(EKespBaudRate3::br38400);
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br38400);
}

TEST_F(CKespCOMPort3Test, RateOutsideRange_IsRefused) {
  AllowRates(4, 8, 6);
  for (const std::int32_t value : {-1, 0, 3, 9, 13, -2, 14, kLowest32, kHighest32}) {
    ExpectRefused(&CKespCOMPort3::SetBaudRate, Rate(value), com_port_error::ERR_BAUD_RATE_NOT_SUPPORTED,
                  L"CKespCOMPort3 - BaudRate", L"Baud rate not supported.");
  }
}

TEST_F(CKespCOMPort3Test, MaximumInRange_IsStored) {
  for (std::int32_t value = -1; value <= 13; ++value) {
    port_.SetMaxBaudRate(Rate(value));
    EXPECT_EQ(port_.MaxBaudRate(), Rate(value));
  }
}

TEST_F(CKespCOMPort3Test, MinimumUpToMaximum_IsStored) {
  port_.SetMaxBaudRate(EKespBaudRate3::br921600);
  for (std::int32_t value = 13; value >= -1; --value) {
    port_.SetMinBaudRate(Rate(value));
    EXPECT_EQ(port_.MinBaudRate(), Rate(value));
  }
}

TEST_F(CKespCOMPort3Test, MinimumNone_IsAcceptedUnderEveryMaximum) {
  for (std::int32_t highest = -1; highest <= 13; ++highest) {
    port_.SetMaxBaudRate(Rate(highest));
    port_.SetMinBaudRate(EKespBaudRate3::brNone);
    EXPECT_EQ(port_.MinBaudRate(), EKespBaudRate3::brNone);
  }
}

TEST_F(CKespCOMPort3Test, MinimumNoRate_IsRefusedBeforeTheOrderIsLookedAt) {
  AllowRates(4, 8, 6);
  for (const std::int32_t value : {-2, 14, kLowest32, kHighest32}) {
    ExpectRefused(&CKespCOMPort3::SetMinBaudRate, Rate(value), com_port_error::ERR_BAUD_RATE_NOT_SUPPORTED,
                  L"CKespCOMPort3 - MaxBaudRate", L"Baud rate not supported.");
  }
}

TEST_F(CKespCOMPort3Test, MaximumNoRate_IsRefusedBeforeTheOrderIsLookedAt) {
  AllowRates(4, 8, 6);
  for (const std::int32_t value : {-2, 14, kLowest32, kHighest32}) {
    ExpectRefused(&CKespCOMPort3::SetMaxBaudRate, Rate(value), com_port_error::ERR_BAUD_RATE_NOT_SUPPORTED,
                  L"CKespCOMPort3 - MaxBaudRate", L"Baud rate not supported.");
  }
}

TEST_F(CKespCOMPort3Test, MinimumAboveMaximum_IsRefused) {
  AllowRates(4, 8, 6);
  for (std::int32_t value = 9; value <= 13; ++value) {
    ExpectRefused(&CKespCOMPort3::SetMinBaudRate, Rate(value), com_port_error::ERR_INVALID_BAUD_RATE,
                  L"CKespCOMPort3 - MaxBaudRate",
                  L"Cannot set minimum baud rate higher than maximum baud rate.");
  }
}

TEST_F(CKespCOMPort3Test, MaximumBelowMinimum_IsRefused) {
  AllowRates(4, 8, 6);
  for (std::int32_t value = -1; value <= 3; ++value) {
    ExpectRefused(&CKespCOMPort3::SetMaxBaudRate, Rate(value), com_port_error::ERR_INVALID_BAUD_RATE,
                  L"CKespCOMPort3 - MaxBaudRate",
                  L"Cannot set maximum baud rate lower than minimum baud rate.");
  }
}

TEST_F(CKespCOMPort3Test, RangeMovedAwayFromRate_RateStays) {
  AllowRates(4, 8, 4);
  port_.SetMinBaudRate(EKespBaudRate3::br9600);
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br2400);
  port_.SetBaudRate(EKespBaudRate3::br38400);
  port_.SetMaxBaudRate(EKespBaudRate3::br9600);
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br38400);
}

}  // namespace
}  // namespace kesp
