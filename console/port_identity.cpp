// Instance identifiers of devices: USB, FTDI's own bus, Bluetooth, and what is built in.
#include "console/port_identity.h"

#include <algorithm>
#include <cctype>
#include <vector>

#include "console/usb_chips.h"

namespace kesp::console {
namespace {

constexpr auto kNone = std::string_view::npos;

char UpperCase(char letter) {
  return static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
}

std::string UpperCase(std::string_view text) {
  std::string upper(text);
  std::transform(upper.begin(), upper.end(), upper.begin(), [](char letter) { return UpperCase(letter); });
  return upper;
}

std::vector<std::string> Parts(std::string_view text, char separator) {
  std::vector<std::string> parts;
  for (;;) {
    const auto end = text.find(separator);
    parts.emplace_back(text.substr(0, end));
    if (end == kNone) return parts;
    text.remove_prefix(end + 1);
  }
}

// The four digits behind "VID_" or "PID_".
std::string DigitsBehind(const std::string& text, std::string_view word) {
  const auto place = text.find(word);
  return place == std::string::npos ? "" : text.substr(place + word.size(), 4);
}

std::string UsbIdOf(const std::string& device) {
  const std::string vendor = DigitsBehind(device, "VID_");
  return vendor.empty() ? "" : vendor + ":" + DigitsBehind(device, "PID_");
}

// Windows makes up an instance's name, with "&" in it, for a device that has no serial number.
bool IsMadeUp(const std::string& name) {
  return name.find('&') != std::string::npos;
}

// "USB\VID_067B&PID_2303\5&1A2B3C&0&2"; of a function, "USB\VID_10C4&PID_EA70&MI_00\7&...", the whole device.
void ReadUsb(const std::vector<std::string>& parts, PortIdentity& identity) {
  identity.bus = "USB";
  identity.usb_id = UsbIdOf(parts[1]);
  if (parts[1].find("&MI_") == std::string::npos && !IsMadeUp(parts[2])) identity.serial = parts[2];
}

// "FTDIBUS\VID_0403+PID_6001+A50285BIA\0000": behind the serial number stands the channel's letter.
void ReadFtdi(const std::vector<std::string>& parts, PortIdentity& identity) {
  identity.bus = "USB";
  identity.usb_id = UsbIdOf(parts[1]);
  const auto words = Parts(parts[1], '+');
  if (words.size() < 3 || words[2].size() < 2 || IsMadeUp(words[2])) return;
  identity.serial = words[2].substr(0, words[2].size() - 1);
  identity.channel = words[2].back();
}

// "BTHENUM\{service}_LOCALMFG&0002\7&1A2B3C&0&001122334455_C00000000"; a port for those who call has the
// address 0.
void ReadBluetooth(const std::vector<std::string>& parts, PortIdentity& identity) {
  identity.bus = "Bluetooth";
  const std::string last = Parts(parts[2], '&').back();
  const std::string address = last.substr(0, last.find('_'));
  if (address.size() != 12 || address == "000000000000") return;
  for (std::size_t i = 0; i < address.size(); i += 2)
    identity.serial += (i > 0 ? ":" : "") + address.substr(i, 2);
}

// A manufacturer may be a reference to a text, with the text behind it: "@oem12.inf,%ftdi%;FTDI".
std::string Resolved(const std::string& text) {
  return text.starts_with("@") ? text.substr(text.rfind(';') + 1) : text;
}

// "USB Serial Port (COM3)" without the port.
std::string WithoutPort(const std::string& name) {
  return name.substr(0, name.rfind(" (COM"));
}

void NameIt(const PortDevice& port, PortIdentity& identity) {
  const UsbChip chip = ChipOf(identity.usb_id);
  identity.vendor = chip.vendor.empty() ? Resolved(port.manufacturer) : chip.vendor;
  if (!port.reported_name.empty()) {
    identity.product = port.reported_name;
  } else {
    identity.product = chip.product.empty() ? WithoutPort(port.friendly_name) : chip.product;
  }
}

}  // namespace

bool IsFtdi(const PortDevice& port) {
  return UpperCase(port.instance).starts_with("FTDIBUS\\");
}

bool IsFunctionOf(const std::string& function, const std::string& device) {
  const std::string upper = UpperCase(function);
  const auto interface_number = upper.find("&MI_");
  return upper.starts_with("USB\\") && interface_number != std::string::npos &&
         UpperCase(device).starts_with(upper.substr(0, interface_number) + "\\");
}

PortIdentity IdentityOf(const PortDevice& port) {
  PortIdentity identity;
  const auto parts = Parts(UpperCase(port.instance), '\\');
  if (parts.size() == 3 && parts[0] == "USB") {
    ReadUsb(parts, identity);
  } else if (parts.size() == 3 && parts[0] == "FTDIBUS") {
    ReadFtdi(parts, identity);
  } else if (parts.size() == 3 && parts[0] == "BTHENUM") {
    ReadBluetooth(parts, identity);
  } else {
    identity.bus = parts[0];
  }
  if (const auto whole = Parts(UpperCase(port.usb_instance), '\\');
      whole.size() == 3 && identity.serial.empty())
    ReadUsb(whole, identity);
  NameIt(port, identity);
  return identity;
}

bool HasSerial(const PortIdentity& identity, std::string_view serial) {
  if (identity.serial.empty()) return false;
  const std::string wanted = UpperCase(serial);
  return wanted == identity.serial || wanted == identity.serial + identity.channel;
}

}  // namespace kesp::console
