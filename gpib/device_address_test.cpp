// Unit tests of the check of an address before a device is opened.
#include "gpib/device_address.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/error_numbers.h"
#include "support/failure_fixture.h"
#include "support/lines_fixture.h"

namespace kesp {
namespace {

constexpr wchar_t kSource[] = L"[CKespIEEE - Initialize()]";

// Checks the address; the lines that were logged are left in `logged`.
Raised Check(const DeviceAddress& address, Lines& logged) {
  return RaisedBy(
      [&] { CheckDeviceAddress(address, [&](const wchar_t* line) { logged.emplace_back(line); }); });
}

TEST(DeviceAddressTest, LowestValues_PassAfterThreeChecks) {
  Lines logged;
  EXPECT_EQ(Check({.board = 0, .primary = 1, .secondary = 0}, logged), Raised{});
  EXPECT_EQ(logged,
            (Lines{L"Check Board Index...", L"Check Primary Address...", L"Check Secondary Address..."}));
}

TEST(DeviceAddressTest, NegativeBoard_IsRefusedFirst) {
  Lines logged;
  EXPECT_EQ(Check({.board = -1, .primary = 0, .secondary = -1}, logged),
            (Raised{ieee_error::ERR_INVALID_BOARD_INDEX, kSource, L"Invalid board index."}));
  EXPECT_EQ(logged, (Lines{L"Check Board Index..."}));
}

TEST(DeviceAddressTest, PrimaryBelowOne_IsRefusedSecond) {
  Lines logged;
  EXPECT_EQ(Check({.board = 0, .primary = 0, .secondary = -1}, logged),
            (Raised{ieee_error::ERR_INVALID_PRIMARY_ADDRESS, kSource, L"Invalid primary address."}));
  EXPECT_EQ(logged, (Lines{L"Check Board Index...", L"Check Primary Address..."}));
}

TEST(DeviceAddressTest, NegativeSecondary_IsRefusedLast) {
  Lines logged;
  EXPECT_EQ(Check({.board = 0, .primary = 1, .secondary = -1}, logged),
            (Raised{ieee_error::ERR_INVALID_SECONDARY_ADDRESS, kSource, L"Invalid secondary address."}));
  EXPECT_EQ(logged,
            (Lines{L"Check Board Index...", L"Check Primary Address...", L"Check Secondary Address..."}));
}

}  // namespace
}  // namespace kesp
