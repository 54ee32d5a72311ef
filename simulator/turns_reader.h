// Reads what is either one list of actions or several that are used in turn.
#pragma once

#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace kesp::simulator {

using ListReader = std::function<void(const nlohmann::json& list, const std::string& place)>;

// Calls read_list with each list of [...] or {"cycle": [[...], ...]}, in order, and its place; at least once.
// Throws PersonalityError for anything else.
void ReadTurns(const nlohmann::json& value, const std::string& place, const ListReader& read_list);

}  // namespace kesp::simulator
