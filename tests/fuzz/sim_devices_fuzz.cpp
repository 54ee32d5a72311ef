// The simulator's devices: what they say does not depend on the pieces in which they hear.
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "simulator/command_framer.h"
#include "simulator/description.h"
#include "simulator/omega_controller.h"
#include "simulator/played_device.h"
#include "simulator/port_switch.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/require.h"

namespace kesp::simulator {
namespace {

// Without times, pieces and endings, with which it would matter when the bytes come.
const Personality& Answering(const char* json) {
  static std::map<const char*, Personality> read;
  const auto [place, is_new] = read.try_emplace(json);
  if (is_new) place->second = ReadInstrument(json);
  return place->second;
}

std::unique_ptr<Device> Play(const char* json, Place place) {
  return std::make_unique<PlayedDevice>(std::make_shared<Instrument>(Answering(json)), place);
}

std::unique_ptr<Device> MakeDevice(std::size_t kind) {
  static constexpr char kInstrument[] = R"({
    "commands": {"A?": "1", "SET *": {"cycle": ["2", null, [{"echo": true}]]},
                 "H": [{"merge_next": true}, {"send": "held"}], "": "empty"},
    "default_query": "what?", "default": "ok", "terminator": "\r\n"})";
  static constexpr char kOne[] = R"({"default": "one"})";
  static constexpr char kTwo[] = R"({"default": "two"})";
  if (kind == 0) return Play(kInstrument, Place::kOwnLine);
  if (kind == 1) {
    return std::make_unique<OmegaController>("01", OmegaController::Values{{"T", "21.5"}, {"TX", "9"}},
                                             LineRule{9600, 'E', 7, 1});
  }
  PortSwitch::Ports ports;
  ports["1"] = Play(kOne, Place::kBehindAnother);
  ports["A"] = Play(kTwo, Place::kBehindAnother);
  return std::make_unique<PortSwitch>(PortNames::kTwoDigits, std::move(ports), std::nullopt);
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
