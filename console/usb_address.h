// From the serial number of a USB adapter to its COM port.
#pragma once

#include <vector>

#include "console/address.h"
#include "console/machine.h"

namespace kesp::console {

// The port of the adapter with that serial number that is plugged in. Of an adapter with several ports, the
// channel's letter behind the serial number tells which. Throws std::runtime_error, which names the ports
// that there are.
ComAddress ComAddressOf(const UsbAddress& address, const std::vector<PortDevice>& ports);

// "usb:..." becomes "com...", another address stays as it is.
Address WithPort(const Address& address, Machine& machine);

}  // namespace kesp::console
