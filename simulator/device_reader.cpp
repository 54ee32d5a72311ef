// Reads the devices that are more than a list of answers from their personality files.
#include "simulator/device_reader.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "simulator/bytes_text.h"
#include "simulator/json_fields.h"
#include "simulator/json_file.h"
#include "simulator/line_rule_reader.h"
#include "simulator/modem_memory.h"
#include "simulator/omega_controller.h"
#include "simulator/personality_reader.h"
#include "simulator/played_device.h"
#include "simulator/port_switch.h"
#include "simulator/radio_modem.h"

namespace kesp::simulator {
namespace {

using nlohmann::json;
namespace fs = std::filesystem;

constexpr Range kGuard{0, 3'600'000};
constexpr std::int64_t kPlainModel = 4;

std::optional<LineRule> LineOf(const JsonFields& fields) {
  if (!fields.Has("line")) return std::nullopt;
  return ReadLineRule(fields.Value("line"), fields.PlaceOf("line"));
}

bool IsDevice(const json& value) {
  return value.is_object() && value.contains("device");
}

// A device, or an instrument that stands at another device's line: an object, or the name of its file.
std::unique_ptr<Device> ReadAttached(const json& value, const std::string& place, const fs::path& folder) {
  if (value.is_string()) {
    const fs::path file = folder / TextAt(value.get<std::string>(), place);
    const json contents = ParseJson(ContentsOf(file));
    // Files could name each other in a circle.
    if (IsDevice(contents)) throw PersonalityError(place, "names a device; write it here instead");
    return ReadAttached(contents, place, folder);
  }
  if (IsDevice(value)) return ReadDevice(value, place, folder);
  return std::make_unique<PlayedDevice>(ReadPersonality(value, place), place);
}

std::unique_ptr<Device> ReadOmega(const JsonFields& fields) {
  fields.AllowOnly({"description", "device", "line", "address", "values"});
  const std::string address = fields.Text("address");
  if (address.empty() || address.find_first_not_of("0123456789") != std::string::npos)
    throw PersonalityError(fields.PlaceOf("address"), "must be digits");
  const JsonFields named(fields.Value("values"), fields.PlaceOf("values"));
  OmegaController::Values values;
  for (const auto& item : fields.Value("values").items()) {
    if (item.key().empty()) throw PersonalityError(named.place(), "has a value without a name");
    values[TextAt(item.key(), named.PlaceOf(item.key()))] = named.Text(item.key());
  }
  return std::make_unique<OmegaController>(address, std::move(values),
                                           LineOf(fields).value_or(LineRule{9600, 'E', 7, 1}));
}

ModemAnswers ReadAnswers(const JsonFields& fields) {
  const std::string name = fields.TextOr("answers", "whole");
  const std::pair<const char*, ModemAnswers> all[] = {{"whole", ModemAnswers::kWhole},
                                                      {"none", ModemAnswers::kNone},
                                                      {"half_ok", ModemAnswers::kHalfOk},
                                                      {"no_cr", ModemAnswers::kNoCarriageReturn}};
  for (const auto& [text, answers] : all) {
    if (name == text) return answers;
  }
  throw PersonalityError(fields.PlaceOf("answers"), "must be \"whole\", \"none\", \"half_ok\" or \"no_cr\"");
}

std::uint32_t HexadecimalAt(const std::string& text, const std::string& place) {
  const std::optional<std::uint32_t> number = FromHexadecimal(text);
  if (!number) throw PersonalityError(place, "must be a hexadecimal number of at most 8 digits");
  return *number;
}

ModemRegisters ReadRegisters(const JsonFields& fields) {
  ModemRegisters registers;
  if (!fields.Has("registers")) return registers;
  const JsonFields named(fields.Value("registers"), fields.PlaceOf("registers"));
  named.AllowOnly({"SH", "SL", "PL", "ID", "CH", "MY", "CT", "DH", "DL"});
  for (const auto& item : fields.Value("registers").items())
    registers[item.key()] = HexadecimalAt(named.Text(item.key()), named.PlaceOf(item.key()));
  return registers;
}

std::unique_ptr<Device> ReadModem(const JsonFields& fields, const fs::path& folder) {
  fields.AllowOnly(
      {"description", "device", "line", "guard_ms", "answers", "registers", "nonvolatile", "behind"});
  RadioModemSetup setup;
  setup.line = LineOf(fields);
  setup.guard = std::chrono::milliseconds(fields.WholeOr("guard_ms", kGuard, setup.guard.count()));
  setup.answers = ReadAnswers(fields);
  setup.registers = ReadRegisters(fields);
  if (fields.Has("nonvolatile")) {
    const ModemMemory memory(folder / fields.Text("nonvolatile"));
    for (const auto& [name, value] : memory.Load()) setup.registers[name] = value;
    setup.write = [memory](const ModemRegisters& registers) { memory.Save(registers); };
  }
  const JsonFields behind(fields.Value("behind"), fields.PlaceOf("behind"));
  for (const auto& item : fields.Value("behind").items()) {
    const std::string place = behind.PlaceOf(item.key());
    setup.behind[HexadecimalAt(item.key(), place)] = ReadAttached(item.value(), place, folder);
  }
  return std::make_unique<RadioModem>(std::move(setup));
}

std::unique_ptr<Device> ReadSwitch(const JsonFields& fields, const fs::path& folder) {
  fields.AllowOnly({"description", "device", "line", "model", "ports"});
  const std::int64_t model = fields.Whole("model", {4, 8});
  if (model % 2 != 0) throw PersonalityError(fields.PlaceOf("model"), "must be 4, 6 or 8");
  const JsonFields named(fields.Value("ports"), fields.PlaceOf("ports"));
  PortSwitch::Ports ports;
  for (const auto& item : fields.Value("ports").items()) {
    const std::string place = named.PlaceOf(item.key());
    if (item.key().empty() || item.key().size() > 2)
      throw PersonalityError(place, "must have a name of one or two characters");
    ports[TextAt(item.key(), place)] = ReadAttached(item.value(), place, folder);
  }
  if (ports.size() > static_cast<std::size_t>(model))
    throw PersonalityError(named.place(), "has more ports than the model");
  const PortNames names = model == kPlainModel ? PortNames::kPlain : PortNames::kTwoDigits;
  return std::make_unique<PortSwitch>(names, std::move(ports), LineOf(fields));
}

}  // namespace

std::unique_ptr<Device> ReadDevice(const json& value, const std::string& place, const fs::path& folder) {
  const JsonFields fields(value, place);
  fields.CheckDescription();
  const std::string kind = fields.Text("device");
  if (kind == "omega") return ReadOmega(fields);
  if (kind == "radio_modem") return ReadModem(fields, folder);
  if (kind == "port_switch") return ReadSwitch(fields, folder);
  throw PersonalityError(fields.PlaceOf("device"), R"(must be "omega", "radio_modem" or "port_switch")");
}

std::unique_ptr<Device> LoadDevice(const fs::path& file) {
  const std::string text = ContentsOf(file);
  try {
    const json value = ParseJson(text);
    return IsDevice(value) ? ReadDevice(value, "", file.parent_path()) : nullptr;
  } catch (const PersonalityError& error) {
    throw PersonalityError(file.string(), error.what());
  }
}

}  // namespace kesp::simulator
