// Looking for an adapter among the COM ports.
#include "console/usb_address.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <variant>

#include "console/port_identity.h"
#include "console/ports.h"

namespace kesp::console {
namespace {

// "COM7 (A50285BI), COM8 (FT12A)"
std::string Listed(const std::vector<PortDevice>& ports) {
  std::string text;
  for (const PortDevice& port : ports) {
    const PortIdentity identity = IdentityOf(port);
    text += (text.empty() ? "" : ", ") + port.name + " (" + identity.serial + identity.channel + ")";
  }
  return text;
}

std::vector<PortDevice> OnlyThosePresent(std::vector<PortDevice> ports) {
  std::erase_if(ports, [](const PortDevice& port) { return !port.present; });
  return ports;
}

std::vector<PortDevice> WithSerial(std::vector<PortDevice> ports, const std::string& serial) {
  std::erase_if(ports, [&serial](const PortDevice& port) { return !HasSerial(IdentityOf(port), serial); });
  return ports;
}

std::string WhatThereIs(std::vector<PortDevice> ports) {
  std::erase_if(ports, [](const PortDevice& port) {
    const PortIdentity identity = IdentityOf(port);
    return identity.bus != "USB" || identity.serial.empty() || !port.present;
  });
  if (ports.empty()) return "no USB adapter with a serial number is plugged in";
  return "plugged in are " + Listed(ports);
}

// Why there is no port to take.
std::string Reason(const std::string& serial, const std::vector<PortDevice>& ports,
                   const std::vector<PortDevice>& known) {
  const std::string adapter = "the USB adapter with the serial number " + serial;
  if (known.empty()) return "no USB adapter has the serial number " + serial + "; " + WhatThereIs(ports);
  return adapter + " is not plugged in (it was " + known.front().name + "); " + WhatThereIs(ports);
}

}  // namespace

ComAddress ComAddressOf(const UsbAddress& address, const std::vector<PortDevice>& ports) {
  const auto known = WithSerial(InNaturalOrder(ports), address.serial);
  const auto found = OnlyThosePresent(known);
  if (found.empty()) throw std::runtime_error(Reason(address.serial, InNaturalOrder(ports), known));
  if (found.size() > 1) {
    throw std::runtime_error("several ports have the serial number " + address.serial + ": " + Listed(found) +
                             "; name one of them");
  }
  ComAddress com;
  com.port = PortNumber(found.front().name);
  com.line = address.line;
  return com;
}

Address WithPort(const Address& address, Machine& machine) {
  const auto* usb = std::get_if<UsbAddress>(&address);
  return usb == nullptr ? address : Address(ComAddressOf(*usb, machine.Ports()));
}

}  // namespace kesp::console
