// Reads the description of a simulated bus from its JSON text.
#pragma once

#include <string>

#include "tests/gpib_driver/bus_description.h"
#include "tests/instrument/personality_error.h"

namespace kesp::simulated_bus {

// Throws simulator::PersonalityError, which names the place, for a text that is no such description.
BusDescription ReadBusDescription(const std::string& json_text);

}  // namespace kesp::simulated_bus
