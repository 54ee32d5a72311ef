// What a program has to set for an address, in whichever language.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "console/address.h"

namespace kesp::console {

// A value of an enumeration.
struct Enumerator {
  std::string name;  // "br9600"
  int value = 0;
};

// One property of a transport.
struct Assignment {
  std::string property;
  // A text is UTF-8; a character below U+0100 stands for the byte with that code.
  std::variant<bool, int, std::string, Enumerator> value;
  bool by_reference = false;  // compiled programs pass the address of a variable
};

struct SnippetSettings {
  Enumerator style;                     // CommStyle
  std::string transport;                // the class: "CKespTCP"
  std::vector<Assignment> assignments;  // in the order in which they are to be made
  std::string omega_address;            // of Query; empty: none
};

// An address of the form "usb:..." has been replaced by its COM port. Throws UsageError for a GPIB address
// without number.
SnippetSettings SettingsFor(const Address& address);

}  // namespace kesp::console
