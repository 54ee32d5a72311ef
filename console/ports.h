// The COM ports of this machine as lines, in natural order.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "console/port_device.h"

namespace kesp::console {

struct ListedPort {
  PortDevice device;
  PortUse use = PortUse::kNotTried;
};

// COM2 before COM10, and one that is there before one of the same name that is not.
std::vector<PortDevice> InNaturalOrder(std::vector<PortDevice> ports);

// Adds those of the working ports' names that no present device has, such as the ports of a remote desktop.
void AddPortsWithoutDevice(const std::vector<std::string>& working, std::vector<PortDevice>& ports);

// The number of "COM3"; 0 for another name.
int PortNumber(std::string_view name);

// "here", "in use", "free", "cannot be opened", "not there".
std::string StateOf(const ListedPort& port);

// Columns with a heading.
std::string PortTable(const std::vector<ListedPort>& ports);

// An array of objects, one for each port, with a line end behind it.
std::string PortsAsJson(const std::vector<ListedPort>& ports);

}  // namespace kesp::console
