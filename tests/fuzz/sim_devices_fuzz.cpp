// The simulator's devices: what they say does not depend on the pieces in which they hear.
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "simulator/command_framer.h"
#include "simulator/description.h"
#include "simulator/played_device.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/require.h"

namespace kesp::simulator {
namespace {

// Without times, pieces and endings, in which it would matter when the bytes come.
constexpr const char* kDescriptions[] = {
    R"({"commands": {"A?": "1", "SET *": {"cycle": ["2", null, [{"echo": true}]]}, "H": [{"merge_next": true},
        {"send": "held"}], "": "empty"}, "default_query": "what?", "default": "ok", "terminator": "\r\n"})",
    R"({"device": "omega", "address": "01", "values": {"T": "21.5", "TX": "9"}})",
    R"({"device": "port_switch", "model": 8, "ports": {"1": {"default": "one"}, "A": {"default": "two"}}})"};

std::unique_ptr<Device> MakeDevice(std::size_t kind) {
  Description description = ReadDescription(kDescriptions[kind], "d");
  if (auto* device = std::get_if<std::unique_ptr<Device>>(&description)) return std::move(*device);
  return std::make_unique<PlayedDevice>(
      std::make_shared<Instrument>(std::get<Personality>(std::move(description))), Place::kOwnLine);
}

void Hear(Device& device, std::string& said) {
  constexpr int kMostDeeds = 10'000;
  int deeds = 0;
  while (const std::optional<Deed> deed = device.Next(Moment(0))) {
    for (std::size_t i = 0; i < deed->step.times; ++i) said += deed->step.bytes;
    Require(++deeds < kMostDeeds, "a device comes to an end");
  }
}

// What the device says to the bytes in pieces of these lengths.
std::string Said(std::size_t kind, std::string_view bytes, const std::vector<std::size_t>& pieces) {
  const std::unique_ptr<Device> device = MakeDevice(kind);
  std::string said;
  Hear(*device, said);
  for (std::size_t i = 0; !bytes.empty(); ++i) {
    const std::string_view piece =
        bytes.substr(0, pieces.empty() ? bytes.size() : pieces[i % pieces.size()] + 1);
    bytes.remove_prefix(piece.size());
    device->Take(piece, Moment(0));
    Hear(*device, said);
  }
  return said;
}

std::vector<std::string> CommandsOf(std::string_view text, std::string_view terminator) {
  std::vector<std::string> commands;
  for (std::size_t end = 0; (end = text.find(terminator)) != std::string_view::npos;) {
    commands.emplace_back(text.substr(0, end));
    text.remove_prefix(end + terminator.size());
  }
  return commands;
}

void CutCommands(std::string_view bytes, std::string_view terminator,
                 const std::vector<std::size_t>& pieces) {
  CommandFramer framer(terminator);
  std::vector<std::string> commands;
  std::string_view rest = bytes;
  for (std::size_t i = 0; !rest.empty(); ++i) {
    const std::string_view piece =
        rest.substr(0, pieces.empty() ? rest.size() : pieces[i % pieces.size()] + 1);
    rest.remove_prefix(piece.size());
    framer.Add(piece);
    while (const std::optional<std::string> command = framer.Next()) commands.push_back(*command);
  }
  Require(commands == CommandsOf(bytes, terminator), "commands end where a plain search finds their end");
}

}  // namespace
}  // namespace kesp::simulator

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  namespace simulator = kesp::simulator;
  kesp::FuzzInput input(data, size);
  const std::size_t kind = input.Below(4);
  std::vector<std::size_t> pieces;
  for (std::size_t count = input.Below(8); count > 0; --count) pieces.push_back(input.Below(32));
  if (kind == 3) {
    const std::string terminator(input.Bytes(1 + input.Below(4)));
    if (!terminator.empty()) simulator::CutCommands(input.Rest(), terminator, pieces);
    return 0;
  }
  const std::string_view bytes = input.Rest();
  kesp::Require(simulator::Said(kind, bytes, {}) == simulator::Said(kind, bytes, pieces),
                "a device says the same however its commands come");
  return 0;
}
