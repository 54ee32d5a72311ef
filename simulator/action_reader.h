// Reads the lists of actions of a personality file.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "simulator/action.h"

namespace kesp::simulator {

// Reads one action.
//
// reply_terminator ends the texts of "send", "split", "trickle", "repeat" and "echo" that do not give an
// "end" of their own. Throws PersonalityError, with a place at or below `place`, for an unknown action or
// field, a missing one, a wrong type and a number out of its range.
Action ReadAction(const nlohmann::json& value, const std::string& place, const std::string& reply_terminator);

// Reads what a command is answered with: a list of actions, or {"cycle": [list, list, ...]}. Throws
// PersonalityError as ReadAction does, and for actions that cannot stand in one list.
Answer ReadAnswer(const nlohmann::json& value, const std::string& place, const std::string& reply_terminator);

}  // namespace kesp::simulator
