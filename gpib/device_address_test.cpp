// Unit tests of the check of an address before a device is opened.
#include "gpib/device_address.h"

#include <gtest/gtest.h>

#include "support/error_numbers.h"
#include "support/failure_fixture.h"
#include "support/lines_fixture.h"

namespace kesp {
namespace {

TEST(DeviceAddressTest, FirstPartThatIsTooLow_IsRefusedBehindTheLinesOfItsCheck) {
  struct Example {
    DeviceAddress address;  // board, primary, secondary
    std::int32_t number;
    const wchar_t* description;
    std::size_t checks;
  };
  const Example examples[] = {
      {{0, 1, 0}, 0, L"", 3},
      {{-1, 0, -1}, ieee_error::ERR_INVALID_BOARD_INDEX, L"Invalid board index.", 1},
      {{0, 0, -1}, ieee_error::ERR_INVALID_PRIMARY_ADDRESS, L"Invalid primary address.", 2},
      {{0, 1, -1}, ieee_error::ERR_INVALID_SECONDARY_ADDRESS, L"Invalid secondary address.", 3},
  };
  const Lines checks{L"Check Board Index...", L"Check Primary Address...", L"Check Secondary Address..."};
  for (const Example& example : examples) {
    SCOPED_TRACE(example.number);
    Lines logged;
    const Raised raised = RaisedBy([&] {
      CheckDeviceAddress(example.address, [&](const wchar_t* line) { logged.emplace_back(line); });
    });
    EXPECT_EQ(raised.number, example.number);
    EXPECT_EQ(raised.source, example.number == 0 ? L"" : L"[CKespIEEE - Initialize()]");
    EXPECT_EQ(raised.description, example.description);
    EXPECT_EQ(logged, Lines(checks.begin(), checks.begin() + static_cast<std::ptrdiff_t>(example.checks)));
  }
}

}  // namespace
}  // namespace kesp
