// Unit tests of the serial control's error numbers and descriptions.
#include "serial/serial_control_errors.h"

#include <gtest/gtest.h>

#include "support/failure_fixture.h"

namespace kesp {
namespace {

TEST(SerialControlErrorsTest, EveryNumber_HasItsValueAndItsFailure) {
  struct Case {
    std::int32_t number;
    std::int32_t value;
    const wchar_t* description;
  };
  constexpr Case kCases[] = {
      {kSerialInvalidValue, 380, L"Invalid property value"},
      {kSerialPortIsOpen, 8000, L"Operation not valid while the port is opened"},
      {kSerialInvalidPort, 8002, L"Invalid port number"},
      {kSerialPortInUse, 8005, L"Port already open"},
      {kSerialDeviceError, 8012, L"The device is not open"},
      {kSerialStateRefused, 8015, L"Could not set comm state"},
      {kSerialPortNotOpen, 8018, L"Operation valid only when the port is open"},
      {kSerialReadError, 8020, L"Error reading comm device"},
      {kSerialStateUnknown, 8021, L"Internal error retrieving device control block for the port"},
      {0, 0, L"Serial control error 0"},
      {-31, -31, L"Serial control error -31"},
  };
  for (const Case& c : kCases) {
    EXPECT_EQ(PartsOf(SerialControlFailure(c.number)), (Raised{c.value, L"commCOMControl", c.description}));
    EXPECT_EQ(SerialControlErrorDescription(c.number), c.description);
  }
}

}  // namespace
}  // namespace kesp
