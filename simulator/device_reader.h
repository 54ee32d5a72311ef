// Reads the devices that are more than a list of answers.
#pragma once

#include <filesystem>
#include <memory>

#include "simulator/device.h"
#include "simulator/fields.h"

namespace kesp::simulator {

// Whether the value is such a device: it has a member "device".
bool IsDevice(const Entry& entry);

// folder: the one of the file, in which files that it names are looked for. Null when there are mistakes.
std::unique_ptr<Device> ReadDevice(const Entry& entry, const std::filesystem::path& folder);

}  // namespace kesp::simulator
