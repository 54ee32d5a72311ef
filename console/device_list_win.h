// The system's list of devices, by its COM ports.
#pragma once

#include <vector>

#include "console/port_device.h"

namespace kesp::console {

// From the list of devices and that of working ports; none is opened.
std::vector<PortDevice> ListPorts();

// Opens the port and closes it again.
PortUse ProbePort(const std::string& name);

}  // namespace kesp::console
