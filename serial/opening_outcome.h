// What became of opening a COM port, out of the system's error number.
#pragma once

#include <cstdint>

namespace kesp {

enum class OpeningOutcome {
  kOpened,
  kNoSuchPort,
  kInUse,
  // The port is there and does not open: a Bluetooth port whose device is off, an adapter that hangs.
  kFailed
};

// That of CreateFile with an error of Windows; 0 for none.
OpeningOutcome OutcomeOfOpening(std::uint32_t system_error);

// As SerialPorts::IsCOMPortAvailable answers (serial_control.h). A port that does not open counts as in use:
// it exists, and cannot be had.
std::int32_t AvailabilityCode(OpeningOutcome outcome);

// The number of serial_control_errors.h for an opening that did not work.
std::int32_t OpenErrorNumber(OpeningOutcome outcome);

}  // namespace kesp
