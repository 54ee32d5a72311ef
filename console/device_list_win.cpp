// SetupAPI's list of the devices of the class "Ports", and the list of ports that drivers keep in the
// registry.
#include "console/device_list_win.h"

#include <windows.h>
// After it.
#include <setupapi.h>

#include <algorithm>
#include <array>

#include "console/port_identity.h"
#include "console/ports.h"
#include "console/registry_win.h"
#include "console/wide_text_win.h"

namespace kesp::console {
namespace {

constexpr GUID kPortsClass = {0x4D36E978, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}};
constexpr DEVPROPKEY kReportedName = {
    {0x540B947E, 0x8B40, 0x45BC, {0xA8, 0xA2, 0x6A, 0x0B, 0x89, 0x4C, 0xBD, 0xA2}}, 4};
// The number that all functions of one device share: SPDRP_BASE_CONTAINERID, which older headers lack.
constexpr DWORD kContainer = 0x24;
// That of the computer itself, with all that is built in.
constexpr const char* kComputer = "{00000000-0000-0000-FFFF-FFFFFFFFFFFF}";

// Devices of a class or of a bus.
class DeviceSet {
 public:
  DeviceSet(const GUID* device_class, const wchar_t* bus, DWORD flags)
      : set_(SetupDiGetClassDevsW(device_class, bus, nullptr, flags)) {}
  ~DeviceSet() {
    if (set_ != INVALID_HANDLE_VALUE) SetupDiDestroyDeviceInfoList(set_);
  }
  DeviceSet(const DeviceSet&) = delete;
  DeviceSet& operator=(const DeviceSet&) = delete;

  bool Select(DWORD index) {
    device_ = {};
    device_.cbSize = sizeof device_;
    return set_ != INVALID_HANDLE_VALUE && SetupDiEnumDeviceInfo(set_, index, &device_) != FALSE;
  }

  // Of the selected device.
  std::string Instance() {
    std::array<wchar_t, 512> text{};
    SetupDiGetDeviceInstanceIdW(set_, &device_, text.data(), static_cast<DWORD>(text.size()), nullptr);
    return ToUtf8(text.data());
  }
  std::string Property(DWORD property) {
    std::array<wchar_t, 512> text{};
    SetupDiGetDeviceRegistryPropertyW(set_, &device_, property, nullptr, reinterpret_cast<BYTE*>(text.data()),
                                      sizeof text - sizeof(wchar_t), nullptr);
    return ToUtf8(text.data());
  }
  std::string ReportedName() {
    std::array<wchar_t, 512> text{};
    DEVPROPTYPE type = 0;
    SetupDiGetDevicePropertyW(set_, &device_, &kReportedName, &type, reinterpret_cast<BYTE*>(text.data()),
                              sizeof text - sizeof(wchar_t), nullptr, 0);
    return ToUtf8(text.data());
  }
  // "Device Parameters".
  HKEY Parameters() { return SetupDiOpenDevRegKey(set_, &device_, DICS_FLAG_GLOBAL, 0, DIREG_DEV, KEY_READ); }

 private:
  HDEVINFO set_;
  SP_DEVINFO_DATA device_{};
};

// USB devices, among them the whole one that has a function: it is in the same container.
struct UsbDevice {
  std::string container;
  std::string instance;
  std::string reported_name;
};

std::vector<UsbDevice> UsbDevices() {
  std::vector<UsbDevice> devices;
  DeviceSet set(nullptr, L"USB", DIGCF_ALLCLASSES);
  for (DWORD i = 0; set.Select(i); ++i)
    devices.push_back({set.Property(kContainer), set.Instance(), set.ReportedName()});
  return devices;
}

// Of the ports that a driver serves now.
class WorkingPorts {
 public:
  WorkingPorts() : names_(RegistryKeyWin(HKEY_LOCAL_MACHINE, "HARDWARE\\DEVICEMAP\\SERIALCOMM").Texts()) {}

  // Not every driver writes the list; the name of the device is there with any.
  bool Has(const std::string& name) const {
    std::array<wchar_t, 1024> target{};
    return std::find(names_.begin(), names_.end(), name) != names_.end() ||
           QueryDosDeviceW(ToWide(name).c_str(), target.data(), static_cast<DWORD>(target.size())) != 0;
  }
  const std::vector<std::string>& names() const { return names_; }

 private:
  std::vector<std::string> names_;
};

std::vector<std::string> PresentInstances() {
  std::vector<std::string> instances;
  DeviceSet set(&kPortsClass, nullptr, DIGCF_PRESENT);
  for (DWORD i = 0; set.Select(i); ++i) instances.push_back(set.Instance());
  return instances;
}

void AddWholeDevice(const std::vector<UsbDevice>& devices, const std::string& container, PortDevice& port) {
  if (container.empty() || lstrcmpiA(container.c_str(), kComputer) == 0) return;
  const auto whole = std::find_if(devices.begin(), devices.end(), [&](const UsbDevice& each) {
    return each.container == container && IsFunctionOf(port.instance, each.instance);
  });
  if (whole == devices.end()) return;
  port.usb_instance = whole->instance;
  if (port.reported_name.empty()) port.reported_name = whole->reported_name;
}

PortDevice SelectedPort(DeviceSet& set, const std::vector<UsbDevice>& usb_devices) {
  PortDevice port;
  port.instance = set.Instance();
  port.friendly_name = set.Property(SPDRP_FRIENDLYNAME);
  port.manufacturer = set.Property(SPDRP_MFG);
  port.reported_name = set.ReportedName();
  const RegistryKeyWin parameters(set.Parameters());
  port.name = parameters.Text("PortName");
  if (const auto latency = parameters.Number("LatencyTimer")) port.latency_ms = static_cast<int>(*latency);
  AddWholeDevice(usb_devices, set.Property(kContainer), port);
  return port;
}

template <class List>
bool Holds(const List& list, const std::string& text) {
  return std::find(list.begin(), list.end(), text) != list.end();
}

}  // namespace

std::vector<PortDevice> ListPorts() {
  std::vector<PortDevice> ports;
  const WorkingPorts working;
  const auto present = PresentInstances();
  const auto usb_devices = UsbDevices();
  DeviceSet set(&kPortsClass, nullptr, 0);
  for (DWORD i = 0; set.Select(i); ++i) {
    PortDevice port = SelectedPort(set, usb_devices);
    // The class has printer ports, too.
    if (!port.name.starts_with("COM")) continue;
    port.present = Holds(present, port.instance) && working.Has(port.name);
    ports.push_back(std::move(port));
  }
  AddPortsWithoutDevice(working.names(), ports);
  return ports;
}

PortUse ProbePort(const std::string& name) {
  HANDLE port = CreateFileW((L"\\\\.\\" + ToWide(name)).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                            OPEN_EXISTING, 0, nullptr);
  if (port != INVALID_HANDLE_VALUE) {
    CloseHandle(port);
    return PortUse::kFree;
  }
  const DWORD error = GetLastError();
  return error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION ? PortUse::kInUse
                                                                          : PortUse::kCannotBeOpened;
}

}  // namespace kesp::console
