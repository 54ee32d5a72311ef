// The serial port switch: its model, and which of its ports is wanted and which connected.
#pragma once

#include <cstdint>
#include <string>

#include "support/enumerations.h"

namespace kesp {

// CKespSmartSwitch3 describes a switch box with 4, 6 or 8 instrument ports behind one COM port. Each serial
// transport owns one for its whole life and hands it to clients; it is used by the transport's thread.
class CKespSmartSwitch3 final {
 public:
  // The switch port wanted, as the box names it ("A" or "3"); empty for none, and empty at first. Any text is
  // stored; the box alone decides what it means.
  const std::wstring& SSPort() const { return ss_port_; }
  void SetSSPort(const std::wstring& value) { ss_port_ = value; }

  // The model of the box, ssBB6port at first. Setting it sets NumPorts too. A value that names no model is
  // stored and leaves NumPorts as it was.
  ESmartSwitchStyle3 Style() const { return style_; }
  void SetStyle(ESmartSwitchStyle3 value);

  // The number of instrument ports of the model: 4, 6 or 8; 6 at first.
  std::int16_t NumPorts() const { return num_ports_; }

  // The switch port that is connected now, empty when none is.
  const std::wstring& CurrentPort() const { return current_port_; }

 private:
  ESmartSwitchStyle3 style_ = ESmartSwitchStyle3::ssBB6port;
  std::int16_t num_ports_ = 6;
  std::wstring ss_port_;
  std::wstring current_port_;
};

}  // namespace kesp
