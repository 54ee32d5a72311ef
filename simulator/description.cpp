// Descriptions: what is simulated, as a file or a text tells it.
#include "simulator/description.h"

#include <fstream>
#include <iterator>
#include <utility>

#include "simulator/bus_reader.h"
#include "simulator/description_error.h"
#include "simulator/device_reader.h"
#include "simulator/network_reader.h"
#include "simulator/personality_reader.h"

namespace kesp::simulator {
namespace {

constexpr char kBuiltIn[] = R"({
  "commands": {
    "*IDN?": "KESP,7100,SIM00001,1.0",
    "*VER": "1.0",
    "t": "21.5",
    "MEAS?": {"cycle": ["21.48", "21.50", "21.53", "21.51"]}
  },
  "default_query": "ERROR 113,Undefined query"
})";

// Parses the text, has it read, and throws when either found mistakes.
template <typename Read>
auto Reading(const std::string& json, const std::string& name, const Read& read) {
  Problems problems;
  const std::optional<Value> value = ParseJson(json, name, problems);
  if (!value) problems.ThrowIfAny();
  auto result = read(Entry(*value, "", name, problems));
  problems.ThrowIfAny();
  return result;
}

}  // namespace

Description LoadDescription(const std::filesystem::path& file) {
  return ReadDescription(ContentsOf(file), file.string(), file.parent_path());
}

Description ReadDescription(const std::string& json, const std::string& name,
                            const std::filesystem::path& folder) {
  return Reading(json, name, [&folder](const Entry& entry) -> Description {
    if (IsDevice(entry)) return ReadDevice(entry, folder);
    if (IsNetwork(entry)) return ReadNetwork(entry);
    if (IsBus(entry)) return ReadBus(entry);
    return ReadPersonality(entry, Place::kOwnLine);
  });
}

Personality ReadInstrument(const std::string& json, const std::string& name) {
  return Reading(json, name, [](const Entry& entry) { return ReadPersonality(entry, Place::kOwnLine); });
}

gpib::BusDescription ReadBus(const std::string& json, const std::string& name) {
  return Reading(json, name, [](const Entry& entry) {
    if (!entry.Member("gpib")) return ReadBus(entry);
    gpib::BusDescription bus;
    bus.devices.push_back(ReadPersonality(entry, Place::kBus));
    return bus;
  });
}

Personality BuiltInInstrument() {
  return ReadInstrument(kBuiltIn);
}

std::string ContentsOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  // A folder opens like a file, and throws at the first byte.
  if (!stream || std::filesystem::is_directory(file))
    throw DescriptionError(file.string() + ": cannot be read");
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

}  // namespace kesp::simulator
