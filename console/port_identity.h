// What the names of a device say about the adapter behind a COM port.
#pragma once

#include <string>
#include <string_view>

#include "console/port_device.h"

namespace kesp::console {

// Empty where nothing is known.
struct PortIdentity {
  std::string bus;     // "USB", "Bluetooth", "ACPI", "PCI"; else the device's enumerator as Windows writes it
  std::string vendor;  // "FTDI"; of a USB device whose vendor is not known here, the manufacturer
  std::string product;  // "FT232R", or the friendly name without the port
  std::string usb_id;   // "0403:6001"
  std::string serial;   // of a USB device; of a Bluetooth device, its address
  std::string channel;  // of an FTDI adapter: "A" to "D"
  bool operator==(const PortIdentity&) const = default;
};

PortIdentity IdentityOf(const PortDevice& port);

// Whether it is an adapter of FTDI's, with FTDI's own driver.
bool IsFtdi(const PortDevice& port);

// Whether the first is the instance of a function of a USB device, "USB\VID_10C4&PID_EA70&MI_00\...", and the
// second may be that device, "USB\VID_10C4&PID_EA70\0123AB".
bool IsFunctionOf(const std::string& function, const std::string& device);

// Whether the text is the serial number of that port's adapter: with the channel's letter behind it or
// without, in any case.
bool HasSerial(const PortIdentity& identity, std::string_view serial);

}  // namespace kesp::console
