// Reads the description of a simulated bus from its JSON text.
#pragma once

#include <string>

#include "simulator/gpib/bus_description.h"
#include "simulator/personality_error.h"

namespace kesp::simulator::gpib {

// Throws simulator::PersonalityError, which names the place, for a text that is no such description.
BusDescription ReadBusDescription(const std::string& json_text);

}  // namespace kesp::simulator::gpib
