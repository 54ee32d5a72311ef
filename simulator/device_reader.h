// Reads the devices that are more than a list of answers from their personality files.
#pragma once

#include <filesystem>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "simulator/device.h"
#include "simulator/personality_error.h"

namespace kesp::simulator {

// The device that a file describes; nothing when the file is the personality of a plain instrument. Names of
// other files in it count from the file's own folder. Throws PersonalityError, which begins with the file's
// name.
std::unique_ptr<Device> LoadDevice(const std::filesystem::path& file);

// The same for an object at this place of a file in that folder.
std::unique_ptr<Device> ReadDevice(const nlohmann::json& value, const std::string& place,
                                   const std::filesystem::path& folder);

}  // namespace kesp::simulator
