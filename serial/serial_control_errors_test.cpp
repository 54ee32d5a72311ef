// Unit tests of the serial control's error numbers and descriptions.
#include "serial/serial_control_errors.h"

#include <gtest/gtest.h>

namespace kesp {
namespace {

struct Case {
  std::int32_t number;
  std::int32_t expected_number;
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

TEST(SerialControlErrorsTest, EveryNumber_HasItsValueAndDescription) {
  for (const Case& c : kCases) {
    EXPECT_EQ(c.number, c.expected_number);
    EXPECT_EQ(SerialControlErrorDescription(c.number), c.description) << c.number;
  }
}

TEST(SerialControlErrorsTest, Failure_HasNumberDescriptionAndTheControlAsSource) {
  for (const Case& c : kCases) {
    const Failure failure = SerialControlFailure(c.number);
    EXPECT_EQ(failure.number(), c.number);
    EXPECT_EQ(failure.source(), L"commCOMControl");
    EXPECT_EQ(failure.description(), c.description);
  }
}

}  // namespace
}  // namespace kesp
