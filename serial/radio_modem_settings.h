// What a radio modem reports about itself.
#pragma once

#include <string>

namespace kesp {

// Texts as the client sees them: numbers in decimal, except the serial number.
struct RadioModemSettings {
  std::wstring serial;         // hexadecimal, both halves
  std::wstring power_level;    // as the modem answered
  std::wstring pan_id;         // identifier of the radio network
  std::wstring channel;        // number of the radio channel
  std::wstring modem_address;  // the modem's own address
  std::wstring timeout;        // milliseconds without a command after which it leaves its command mode
};

}  // namespace kesp
