// The tables of the system's errors at opening a COM port, and of what callers are told.
#include "serial/opening_outcome.h"

#include "serial/serial_control_errors.h"

namespace kesp {

namespace {

// Errors of Windows, by their names there.
constexpr std::uint32_t kFileNotFound = 2;
constexpr std::uint32_t kPathNotFound = 3;
constexpr std::uint32_t kAccessDenied = 5;
constexpr std::uint32_t kSharingViolation = 32;
constexpr std::uint32_t kDevNotExist = 55;
constexpr std::uint32_t kInvalidName = 123;
constexpr std::uint32_t kNoSuchDevice = 433;
constexpr std::uint32_t kDeviceNotConnected = 1167;
constexpr std::uint32_t kDeviceRemoved = 1617;

}  // namespace

OpeningOutcome OutcomeOfOpening(std::uint32_t system_error) {
  switch (system_error) {
    case 0:
      return OpeningOutcome::kOpened;
    // An adapter that was pulled is told in several ways, by the system and by its driver.
    case kFileNotFound:
    case kPathNotFound:
    case kInvalidName:
    case kDevNotExist:
    case kNoSuchDevice:
    case kDeviceNotConnected:
    case kDeviceRemoved:
      return OpeningOutcome::kNoSuchPort;
    case kAccessDenied:
    case kSharingViolation:
      return OpeningOutcome::kInUse;
    default:
      return OpeningOutcome::kFailed;
  }
}

std::int32_t AvailabilityCode(OpeningOutcome outcome) {
  switch (outcome) {
    case OpeningOutcome::kOpened:
      return 0;
    case OpeningOutcome::kNoSuchPort:
      return kFileNotFound;
    default:
      return kAccessDenied;
  }
}

std::int32_t OpenErrorNumber(OpeningOutcome outcome) {
  switch (outcome) {
    case OpeningOutcome::kNoSuchPort:
      return kSerialInvalidPort;
    case OpeningOutcome::kInUse:
      return kSerialPortInUse;
    default:
      return kSerialDeviceError;
  }
}

}  // namespace kesp
