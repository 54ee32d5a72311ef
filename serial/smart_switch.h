// The serial port switch: its model, its ports, and the sequences that connect and release them.
#pragma once

#include <cstdint>
#include <string>

#include "support/enumerations.h"

namespace kesp {

// The serial line that a switch box sits on. Its operations throw the failures of the port.
class SwitchLine {
 public:
  virtual ~SwitchLine() = default;

  // Discards every byte that waits in either direction.
  virtual void ClearLine() = 0;

  // Hands bytes for the box to the line.
  virtual void WriteToLine(const std::string& bytes) = 0;

  // Waits until they have left; throws when that takes longer than it should.
  virtual void AwaitLine() = 0;

  // Writes to the port's diagnostic log, when that is on.
  virtual void LogSwitch(const std::wstring& message) = 0;
};

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

  // For the serial transport. Connects SSPort and releases the port that was connected; sends nothing when
  // SSPort is connected already. With SSPort empty the box is told to release, also when nothing is
  // connected. Everything has left when it returns.
  void Select(SwitchLine& line);

  // For the serial transport. Tells the box to release whatever is connected, without waiting until that has
  // left. CurrentPort is empty afterwards, also when the line fails: nobody knows then what the box did.
  void Release(SwitchLine& line);

 private:
  std::string SelectionSequence() const;
  std::string ReleaseSequence() const;

  ESmartSwitchStyle3 style_ = ESmartSwitchStyle3::ssBB6port;
  std::int16_t num_ports_ = 6;
  std::wstring ss_port_;
  std::wstring current_port_;
};

}  // namespace kesp
