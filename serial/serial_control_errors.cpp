// The table of the serial control's error descriptions.
#include "serial/serial_control_errors.h"

namespace kesp {

std::wstring SerialControlErrorDescription(std::int32_t number) {
  switch (number) {
    case kSerialInvalidValue:
      return L"Invalid property value";
    case kSerialPortIsOpen:
      return L"Operation not valid while the port is opened";
    case kSerialInvalidPort:
      return L"Invalid port number";
    case kSerialPortInUse:
      return L"Port already open";
    case kSerialDeviceError:
      return L"The device is not open";
    case kSerialStateRefused:
      return L"Could not set comm state";
    case kSerialPortNotOpen:
      return L"Operation valid only when the port is open";
    case kSerialReadError:
      return L"Error reading comm device";
    case kSerialStateUnknown:
      return L"Internal error retrieving device control block for the port";
    default:
      return L"Serial control error " + std::to_wstring(number);
  }
}

Failure SerialControlFailure(std::int32_t number) {
  return {number, L"commCOMControl", SerialControlErrorDescription(number)};
}

}  // namespace kesp
