// The serial port switch: its model decides the number of its ports and the form of its sequences.
#include "serial/smart_switch.h"

#include "support/attempt.h"
#include "support/text.h"

namespace kesp {

void CKespSmartSwitch3::SetStyle(ESmartSwitchStyle3 value) {
  style_ = value;
  switch (value) {
    case ESmartSwitchStyle3::ssBB4port:
      num_ports_ = 4;
      break;
    case ESmartSwitchStyle3::ssBB8port:
      num_ports_ = 8;
      break;
    case ESmartSwitchStyle3::ssBB6port:
      num_ports_ = 6;
      break;
  }
}

void CKespSmartSwitch3::Select(SwitchLine& line) {
  if (ss_port_ == current_port_ && !ss_port_.empty()) return;
  Release(line);
  // Clearing the line, which is what follows, must not take back bytes that have yet to leave.
  line.AwaitLine();
  if (ss_port_.empty()) return;
  const std::string sequence = SelectionSequence();
  line.ClearLine();
  line.WriteToLine(sequence);
  line.AwaitLine();
  line.LogSwitch(L"Selecting SmartSwitch port " + ss_port_ + L" (" + SystemCodePage().FromBytes(sequence) +
                 L")");
  // What the box echoed is not to be taken for the instrument's reply.
  line.ClearLine();
  current_port_ = ss_port_;
}

void CKespSmartSwitch3::Release(SwitchLine& line) {
  const std::string sequence = ReleaseSequence();
  const Attempt written = Try([&] {
    line.ClearLine();
    line.WriteToLine(sequence);
    return true;
  });
  current_port_.clear();
  if (written.error) throw Failure(*written.error);
  line.LogSwitch(L"Closing SmartSwitch port (" + SystemCodePage().FromBytes(sequence) + L")");
}

std::string CKespSmartSwitch3::SelectionSequence() const {
  // The larger boxes want two characters for every port.
  const bool padded = style_ != ESmartSwitchStyle3::ssBB4port && ss_port_.size() == 1;
  return std::string("\x1B\x02") + (padded ? "0" : "") + SystemCodePage().ToBytes(ss_port_) + "\r";
}

std::string CKespSmartSwitch3::ReleaseSequence() const {
  return style_ == ESmartSwitchStyle3::ssBB4port ? "\x1B\x02\x04" : "\x1B\x02\x02\x04";
}

}  // namespace kesp
