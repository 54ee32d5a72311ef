// The text of a description for the simulator.
#pragma once

#include <string>
#include <vector>

#include "console/device_from_trace.h"

namespace kesp::console {

// The description as JSON. Adds to the remarks what the trace does not tell.
std::string DeviceText(const HeardInstrument& instrument, std::vector<std::string>& remarks);

}  // namespace kesp::console
