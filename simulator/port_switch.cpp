// A switch that joins one serial line to one of several instruments.
#include "simulator/port_switch.h"

#include <utility>

#include "simulator/bytes_text.h"

namespace kesp::simulator {
namespace {

constexpr char kEscape = 27;
constexpr char kStx = 2;
constexpr char kEot = 4;
constexpr std::size_t kLongestCommand = 16;

}  // namespace

std::string Written(PortNames names, const std::string& name) {
  if (names == PortNames::kPlain || name.size() >= 2) return name;
  return "0" + name;
}

PortSwitch::PortSwitch(PortNames names, Ports ports, std::optional<LineRule> line)
    : names_(names), line_(line), ports_(std::move(ports)), selected_(ports_.end()) {}

void PortSwitch::Take(std::string_view bytes, Moment now) {
  // What was under way to the client when it sent these bytes.
  Hear(now);
  for (const char byte : bytes) TakeByte(byte, now);
}

std::optional<Deed> PortSwitch::Next(Moment now) {
  Hear(now);
  return TakeFirst(deeds_);
}

std::optional<Moment> PortSwitch::Due() const {
  std::optional<Moment> due;
  for (const auto& [name, device] : ports_) due = Earlier(due, device->Due());
  return due;
}

void PortSwitch::Hear(Moment now) {
  for (auto port = ports_.begin(); port != ports_.end(); ++port) {
    while (std::optional<Deed> deed = port->second->Next(now)) {
      if (port != selected_) continue;
      if (!deed->event.empty()) deed->event.insert(0, "port " + port->first + ": ");
      deeds_.push_back(std::move(*deed));
    }
  }
}

void PortSwitch::TakeByte(char byte, Moment now) {
  if (command_.empty() && byte != kEscape) return PassOn({&byte, 1}, now);
  command_ += byte;
  if (command_.size() == 1) return;
  const bool over = command_.size() > 2 && (byte == '\r' || byte == kEot);
  if (over) return Obey();
  if (command_[1] == kStx && command_.size() <= kLongestCommand) return;
  // An escape sequence meant for the instrument.
  PassOn(std::exchange(command_, std::string()), now);
}

void PortSwitch::Obey() {
  const std::string text = std::exchange(command_, std::string()).substr(2);
  const std::string release = names_ == PortNames::kPlain ? "\x04" : "\x02\x04";
  if (text == release) {
    selected_ = ports_.end();
    deeds_.push_back({"released", {}});
    return;
  }
  for (auto port = ports_.begin(); port != ports_.end(); ++port) {
    if (text != Written(names_, port->first) + "\r") continue;
    selected_ = port;
    deeds_.push_back({"selected " + port->first, {}});
    return;
  }
  deeds_.push_back({"not understood " + Quoted(text), {}});
}

void PortSwitch::PassOn(std::string_view bytes, Moment now) {
  if (selected_ == ports_.end()) {
    deeds_.push_back({"lost " + Quoted(bytes) + ", no port is selected", {}});
    return;
  }
  selected_->second->Take(bytes, now);
  Hear(now);
}

}  // namespace kesp::simulator
