// The serial port switch: its model decides the number of its ports.
#include "serial/smart_switch.h"

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

}  // namespace kesp
