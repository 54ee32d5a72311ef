// Reads the settings of an instrument's serial line from a personality file.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "simulator/line_rule.h"

namespace kesp::simulator {

// Reads an object with the fields baud, parity, data_bits and stop_bits, of which the first is required.
// Throws PersonalityError with a place below `place`.
LineRule ReadLineRule(const nlohmann::json& value, const std::string& place);

}  // namespace kesp::simulator
