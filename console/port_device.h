// A COM port as the system's device list tells of it.
#pragma once

#include <optional>
#include <string>

namespace kesp::console {

// Texts are UTF-8, and empty where the system says nothing.
struct PortDevice {
  std::string name;           // "COM3"
  std::string instance;       // "FTDIBUS\VID_0403+PID_6001+A50285BIA\0000"; empty: the port has no device
  std::string usb_instance;   // of a function of a USB device: the whole device, "USB\VID_10C4&PID_EA70\0123"
  std::string friendly_name;  // "USB Serial Port (COM3)"
  std::string manufacturer;   // "FTDI"
  std::string reported_name;  // what a USB device calls itself
  bool present = false;       // plugged in and working; otherwise Windows only remembers it
  std::optional<int> latency_ms;  // of an FTDI adapter: how long it holds back a packet that is not full
};

enum class PortUse { kNotTried, kFree, kInUse, kCannotBeOpened };

}  // namespace kesp::console
