// The error numbers of the serial control, with their descriptions.
#pragma once

#include <cstdint>
#include <string>

#include "support/failure.h"

namespace kesp {

// The numbers and descriptions that automation clients know from the serial controls of Windows.
inline constexpr std::int32_t kSerialInvalidValue = 380;
inline constexpr std::int32_t kSerialPortIsOpen = 8000;   // not valid while the port is open
inline constexpr std::int32_t kSerialInvalidPort = 8002;  // no such port
inline constexpr std::int32_t kSerialPortInUse = 8005;    // another program holds the port
inline constexpr std::int32_t kSerialDeviceError = 8012;  // the device does not take or give anything
inline constexpr std::int32_t kSerialStateRefused = 8015;
inline constexpr std::int32_t kSerialPortNotOpen = 8018;
inline constexpr std::int32_t kSerialReadError = 8020;
inline constexpr std::int32_t kSerialStateUnknown = 8021;  // the device does not tell its settings

// The description of one of these numbers.
std::wstring SerialControlErrorDescription(std::int32_t number);

// A failure with that number, its description and the source "commCOMControl".
Failure SerialControlFailure(std::int32_t number);

}  // namespace kesp
