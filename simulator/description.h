// Descriptions: what is simulated, as a file or a text tells it.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <variant>

#include "simulator/device.h"
#include "simulator/gpib/bus_description.h"
#include "simulator/network_description.h"
#include "simulator/personality.h"

namespace kesp::simulator {

// An instrument, a device that is more than a list of answers, a bus, or a network. All functions here throw
// DescriptionError, with every mistake there is.
using Description =
    std::variant<Personality, std::unique_ptr<Device>, gpib::BusDescription, NetworkDescription>;

Description LoadDescription(const std::filesystem::path& file);

// The same of a text, which the messages call by this name; files that it names are looked for in the folder.
Description ReadDescription(const std::string& json, const std::string& name,
                            const std::filesystem::path& folder = {});

// What must be an instrument, or a bus. A file that describes a single instrument with an address is a bus,
// too.
Personality ReadInstrument(const std::string& json, const std::string& name = "description");
gpib::BusDescription ReadBus(const std::string& json, const std::string& name = "description");

// Played when no file is given: a small instrument that knows "*IDN?", "*VER", "t" and "MEAS?", refuses every
// other query with an error text and takes everything else without an answer.
Personality BuiltInInstrument();

// The contents of a file.
std::string ContentsOf(const std::filesystem::path& file);

}  // namespace kesp::simulator
