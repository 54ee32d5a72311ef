// JSON texts and files, read more strictly than the parser does by itself.
#pragma once

#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace kesp::simulator {

// Throws PersonalityError for text that is not JSON (with line and column) and a name given twice in one
// object.
nlohmann::json ParseJson(const std::string& text);

// The contents of a file. Throws PersonalityError, with the file's name, when it cannot be read.
std::string ContentsOf(const std::filesystem::path& file);

}  // namespace kesp::simulator
