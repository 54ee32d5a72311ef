// The machine of the tests.
#include "console/machine_fake.h"

namespace kesp::console {

PortUse MachineFake::Probe(const std::string& name) {
  probed.push_back(name);
  return uses[name];
}

std::optional<FileFacts> MachineFake::FactsOf(const std::string& path) {
  const auto found = files.find(path);
  return found == files.end() ? std::nullopt : std::optional(found->second);
}

LibraryReport MachineFake::Examine(const std::string& path) {
  examined.push_back(path);
  return beside;
}

void MachineFake::Register(int bits, Hive hive, const std::string& library) {
  for (const std::string& name : PublicClasses())
    registrations[bits].classes.push_back({hive, name, library});
  registrations[bits].type_library = library;
}

std::vector<PortDevice> SomePorts() {
  std::vector<PortDevice> ports(7);
  ports[0].name = "COM10";
  ports[0].instance = R"(FTDIBUS\VID_0403+PID_6001+A50285BIA\0000)";
  ports[0].friendly_name = "USB Serial Port (COM10)";
  ports[0].latency_ms = 16;
  ports[1].name = "COM2";
  ports[1].instance = R"(USB\VID_067B&PID_2303\5&1A2B3C&0&2)";
  ports[1].friendly_name = "Prolific USB-to-Serial Comm Port (COM2)";
  ports[2].name = "COM9";
  ports[2].instance = R"(USB\VID_1A86&PID_7523\5&1A2B3C&0&4)";
  ports[2].friendly_name = "USB-SERIAL CH340 (COM9)";
  ports[3].name = "COM1";
  ports[3].instance = R"(ACPI\PNP0501\1)";
  ports[3].friendly_name = "Communications Port (COM1)";
  ports[3].manufacturer = "(Standard port types)";
  ports[4].name = "COM12";
  ports[4].instance =
      R"(BTHENUM\{00001101-0000-1000-8000-00805f9b34fb}_LOCALMFG&0002\7&1A2B3C&0&001122334455_C00000000)";
  ports[4].friendly_name = "Standard Serial over Bluetooth link (COM12)";
  ports[5].name = "COM11";
  ports[5].instance = R"(USB\VID_10C4&PID_EA70&MI_00\6&3A2B3C&0&0000)";
  ports[5].usb_instance = R"(USB\VID_10C4&PID_EA70\0123ab)";
  ports[5].friendly_name = "Silicon Labs Dual CP2105 USB to UART Bridge (COM11)";
  ports[6].name = "COM7";
  ports[6].instance = R"(FTDIBUS\VID_0403+PID_6001+FTGHOSTA\0000)";
  ports[6].friendly_name = "USB Serial Port (COM7)";
  for (PortDevice& port : ports) port.present = port.name != "COM7";
  return ports;
}

}  // namespace kesp::console
