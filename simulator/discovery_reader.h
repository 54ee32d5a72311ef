// Reads how a personality answers discovery.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "simulator/discovery_answer.h"

namespace kesp::simulator {

// Reads a list of actions, or {"cycle": [list, list, ...]}. Texts have no terminator but the "end" that they
// give. Throws PersonalityError, with a place at or below `place`, as ReadAnswer does, and for actions that
// make no sense for datagrams and datagrams that are too long.
DiscoveryAnswer ReadDiscoveryAnswer(const nlohmann::json& value, const std::string& place);

}  // namespace kesp::simulator
