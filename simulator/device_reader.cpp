// Reads the devices that are more than a list of answers.
#include "simulator/device_reader.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include "simulator/bytes_text.h"
#include "simulator/description.h"
#include "simulator/description_error.h"
#include "simulator/modem_memory.h"
#include "simulator/omega_controller.h"
#include "simulator/personality_reader.h"
#include "simulator/played_device.h"
#include "simulator/port_switch.h"
#include "simulator/radio_modem.h"

namespace kesp::simulator {
namespace {

namespace fs = std::filesystem;

constexpr Range kGuard{0, 3'600'000};
constexpr std::int64_t kPlainModel = 4;
constexpr std::string_view kRegisters[] = {"SH", "SL", "PL", "ID", "CH", "MY", "CT", "DH", "DL"};

std::optional<LineRule> LineOf(Fields& fields) {
  const std::optional<Entry> line = fields.Find("line");
  if (!line) return std::nullopt;
  return ReadLineRule(*line);
}

// Paths are UTF-8 here as everywhere.
fs::path PathIn(const fs::path& folder, const std::string& utf8) {
  return folder / fs::path(std::u8string(utf8.begin(), utf8.end()));
}

// An instrument that stands at another device's line.
std::unique_ptr<Device> ReadBehind(const Entry& entry) {
  return std::make_unique<PlayedDevice>(
      std::make_shared<Instrument>(ReadPersonality(entry, Place::kBehindAnother)), Place::kBehindAnother);
}

// A device, or an instrument that stands at another device's line: an object, or the name of its file.
std::unique_ptr<Device> ReadAttached(const Entry& entry, const fs::path& folder) {
  if (!entry.Is(Value::Kind::kText)) return IsDevice(entry) ? ReadDevice(entry, folder) : ReadBehind(entry);
  const fs::path path = PathIn(folder, entry.Utf8Text());
  const std::string file = path.string();
  try {
    const std::optional<Value> value = ParseJson(ContentsOf(path), file, entry.problems());
    if (!value) return nullptr;
    const Entry whole(*value, "", file, entry.problems());
    // An instrument names no further files, so that no circle comes of it.
    if (!IsDevice(whole)) return ReadBehind(whole);
    entry.Wrong("names a device; write it here instead");
  } catch (const DescriptionError& error) {
    entry.Wrong(error.what());
  }
  return nullptr;
}

std::unique_ptr<Device> ReadOmega(Fields& fields) {
  std::string digits;
  if (const std::optional<Entry> address = fields.Need("address")) {
    digits = address->Text();
    if (digits.empty() || digits.find_first_not_of("0123456789") != std::string::npos)
      address->Wrong("must be digits");
  }
  OmegaController::Values values;
  if (const std::optional<Entry> named = fields.Need("values")) {
    const Fields must_be_an_object(*named);
    for (const auto& [name, value] : named->Members()) {
      if (name.empty()) named->Wrong("has a value without a name");
      values[name] = value.Text();
    }
  }
  OmegaController::Checks checks = OmegaController::Checks::kRight;
  if (const std::optional<Entry> check = fields.Find("check")) {
    if (check->IsText("wrong")) checks = OmegaController::Checks::kWrong;
    if (!check->IsText("wrong") && !check->IsText("right")) check->Wrong("must be \"right\" or \"wrong\"");
  }
  return std::make_unique<OmegaController>(digits, std::move(values),
                                           LineOf(fields).value_or(LineRule{9600, 'E', 7, 1}), checks);
}

ModemAnswers ReadModemAnswers(Fields& fields) {
  const std::optional<Entry> answers = fields.Find("answers");
  if (!answers) return ModemAnswers::kWhole;
  const std::string name = answers->Text();
  const std::pair<const char*, ModemAnswers> all[] = {{"whole", ModemAnswers::kWhole},
                                                      {"none", ModemAnswers::kNone},
                                                      {"half_ok", ModemAnswers::kHalfOk},
                                                      {"no_cr", ModemAnswers::kNoCarriageReturn}};
  for (const auto& [text, kind] : all) {
    if (name == text) return kind;
  }
  answers->Wrong("must be \"whole\", \"none\", \"half_ok\" or \"no_cr\"");
  return ModemAnswers::kWhole;
}

// text: of the entry, or its name.
std::uint32_t HexadecimalAt(const std::string& text, const Entry& entry) {
  const std::optional<std::uint32_t> number = FromHexadecimal(text);
  if (!number) entry.Wrong("must be a hexadecimal number of at most 8 digits");
  return number.value_or(0);
}

ModemRegisters ReadRegisters(const Entry& entry) {
  ModemRegisters registers;
  Fields fields(entry);
  for (const std::string_view name : kRegisters) {
    if (const std::optional<Entry> value = fields.Find(name))
      registers[std::string(name)] = HexadecimalAt(value->Text(), *value);
  }
  fields.Finish();
  return registers;
}

std::unique_ptr<Device> ReadModem(Fields& fields, const fs::path& folder) {
  RadioModemSetup setup;
  setup.line = LineOf(fields);
  setup.guard = std::chrono::milliseconds(fields.WholeOr("guard_ms", kGuard, setup.guard.count()));
  setup.answers = ReadModemAnswers(fields);
  if (const std::optional<Entry> registers = fields.Find("registers"))
    setup.registers = ReadRegisters(*registers);
  if (const std::optional<Entry> file = fields.Find("nonvolatile")) {
    const ModemMemory memory(PathIn(folder, file->Utf8Text()));
    try {
      for (const auto& [name, value] : memory.Load()) setup.registers[name] = value;
    } catch (const DescriptionError& error) {
      file->Wrong(error.what());
    }
    setup.write = [memory](const ModemRegisters& registers) { memory.Save(registers); };
  }
  if (const std::optional<Entry> behind = fields.Need("behind")) {
    const Fields must_be_an_object(*behind);
    for (const auto& [name, device] : behind->Members()) {
      if (!setup.behind.emplace(HexadecimalAt(name, device), ReadAttached(device, folder)).second)
        device.Wrong("has the address of another device");
    }
  }
  return std::make_unique<RadioModem>(std::move(setup));
}

std::unique_ptr<Device> ReadSwitch(Fields& fields, const fs::path& folder) {
  std::int64_t model = kPlainModel;
  if (const std::optional<Entry> number = fields.Need("model")) {
    model = number->Whole({4, 8});
    if (model % 2 != 0) number->Wrong("must be 4, 6 or 8");
  }
  const PortNames names = model == kPlainModel ? PortNames::kPlain : PortNames::kTwoDigits;
  PortSwitch::Ports ports;
  if (const std::optional<Entry> named = fields.Need("ports")) {
    const Fields must_be_an_object(*named);
    for (const auto& [name, device] : named->Members()) {
      if (name.empty() || name.size() > 2) device.Wrong("must have a name of one or two characters");
      const auto is_the_same = [&names, written = Written(names, name)](const auto& port) {
        return Written(names, port.first) == written;
      };
      if (std::any_of(ports.begin(), ports.end(), is_the_same)) device.Wrong("has the name of another port");
      ports[name] = ReadAttached(device, folder);
    }
    if (ports.size() > static_cast<std::size_t>(model)) named->Wrong("has more ports than the model");
  }
  return std::make_unique<PortSwitch>(names, std::move(ports), LineOf(fields));
}

}  // namespace

bool IsDevice(const Entry& entry) {
  return entry.Member("device").has_value();
}

std::unique_ptr<Device> ReadDevice(const Entry& entry, const fs::path& folder) {
  Fields fields(entry);
  const Entry device = *fields.Need("device");
  const std::string kind = device.Is(Value::Kind::kText) ? device.Text() : "";
  std::unique_ptr<Device> read;
  if (kind == "omega") {
    read = ReadOmega(fields);
  } else if (kind == "radio_modem") {
    read = ReadModem(fields, folder);
  } else if (kind == "port_switch") {
    read = ReadSwitch(fields, folder);
  } else {
    // Of its other members nobody can say whether they are known.
    device.Wrong(R"(must be "omega", "radio_modem" or "port_switch")");
    return nullptr;
  }
  fields.Finish();
  return read;
}

}  // namespace kesp::simulator
