// Reads a bus: devices with their addresses, and which calls of the driver fail.
#pragma once

#include "simulator/fields.h"
#include "simulator/gpib/bus_description.h"

namespace kesp::simulator {

// Whether the value is a bus by the names of its members.
bool IsBus(const Entry& entry);

gpib::BusDescription ReadBus(const Entry& entry);

}  // namespace kesp::simulator
