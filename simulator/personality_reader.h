// Reads a personality from the JSON text of its file.
#pragma once

#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "simulator/personality.h"
#include "simulator/personality_error.h"

namespace kesp::simulator {

// Reads the text strictly. Throws PersonalityError for text that is not JSON (with line and column), a name
// given twice in one object, and everything that the format does not know (with the place).
Personality ReadPersonality(const std::string& json_text);

// The same for a personality that is part of something else, at this place.
Personality ReadPersonality(const nlohmann::json& value, const std::string& place);

// Reads a file. The PersonalityError of a file begins with the file's name.
Personality LoadPersonality(const std::filesystem::path& file);

}  // namespace kesp::simulator
