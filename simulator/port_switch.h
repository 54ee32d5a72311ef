// A switch that joins one serial line to one of several instruments.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "simulator/device.h"

namespace kesp::simulator {

// How the switch writes its commands.
enum class PortNames {
  kPlain,      // four ports: the name as it is, released by ESC STX EOT
  kTwoDigits,  // six or eight: the name in two characters ("0A"), released by ESC STX STX EOT
};

// How the name of a port is written in a command.
std::string Written(PortNames names, const std::string& name);

// Takes ESC STX name CR, which selects a port, and the release; a name that it has not changes nothing. All
// other bytes go to the instrument at the selected port and come from there; without one they are lost.
class PortSwitch : public Device {
 public:
  using Ports = std::map<std::string, std::unique_ptr<Device>>;

  // The ports by their names as the user knows them ("A").
  PortSwitch(PortNames names, Ports ports, std::optional<LineRule> line);

  void Take(std::string_view bytes, Moment now) override;
  std::optional<Deed> Next(Moment now) override;
  std::optional<Moment> Due() const override;
  std::optional<LineRule> Line() const override { return line_; }

 private:
  void TakeByte(char byte, Moment now);
  void Obey();
  void PassOn(std::string_view bytes, Moment now);
  // Takes what the instruments do; what comes from a port that is not selected is lost.
  void Hear(Moment now);

  const PortNames names_;
  const std::optional<LineRule> line_;
  Ports ports_;
  Ports::iterator selected_;
  // The command from its ESC on; empty between commands.
  std::string command_;
  std::deque<Deed> deeds_;
};

}  // namespace kesp::simulator
