// What a program has to set for an address, in whichever language.
#include "console/snippet_settings.h"

#include <algorithm>
#include <iterator>

#include "console/baud_rates.h"
#include "console/trace_bytes.h"
#include "console/usage_error.h"

namespace kesp::console {
namespace {

Enumerator RateOf(int baud) {
  const auto* found = std::find(std::begin(kBaudRates), std::end(kBaudRates), baud);
  return {"br" + std::to_string(baud), static_cast<int>(found - std::begin(kBaudRates))};
}

Enumerator SwitchOf(int ports) {
  if (ports == 4) return {"ssBB4port", 0};
  if (ports == 8) return {"ssBB8port", 1};
  return {"ssBB6port", 2};
}

Enumerator ParityOf(char letter) {
  switch (letter) {
    case 'E':
      return {"PARITY_EVEN", 1};
    case 'O':
      return {"PARITY_ODD", 2};
    case 'M':
      return {"PARITY_MARK", 3};
    case 'S':
      return {"PARITY_SPACE", 4};
    default:
      return {"PARITY_NONE", 0};
  }
}

Enumerator StopBitsOf(const std::string& text) {
  if (text == "1.5") return {"STOP_1_5BITS", 1};
  if (text == "2") return {"STOP_2BITS", 2};
  return {"STOP_1BIT", 0};
}

std::string Characters(const CharacterCodes& codes) {
  return TextOfBytes(std::string(codes.begin(), codes.end()));
}

SnippetSettings Of(const TcpAddress& tcp) {
  SnippetSettings settings{{"csTCPIP", 1}, "CKespTCP", {}, ""};
  settings.assignments = {{"IPAddress", tcp.host}, {"Port", tcp.port}};
  if (!tcp.eos.empty()) settings.assignments.push_back({"EOSChar", Characters(tcp.eos)});
  if (tcp.any) settings.assignments.push_back({"TerminateOnEOS", false});
  return settings;
}

void AddFrame(std::vector<Assignment>& assignments, const LineOptions& line) {
  assignments.push_back(
      {"DataBits", Enumerator{"DATA_" + std::to_string(line.data_bits) + "BITS", line.data_bits - 4}, true});
  assignments.push_back({"Parity", ParityOf(line.parity), true});
  assignments.push_back({"StopBits", StopBitsOf(line.stop_bits), true});
}

// The kind of controller comes first, because it sets the frame and the rate. The range comes before the
// rate.
SnippetSettings Of(const ComAddress& com) {
  SnippetSettings settings{{"csRS232", 0}, "CKespCOMPort3", {}, com.line.omega.value_or("")};
  const LineOptions& line = com.line;
  auto& list = settings.assignments;
  list.push_back({"Port", com.port});
  if (line.omega) list.push_back({"ControllerStyle", Enumerator{"CS_OMEGA", 1}});
  if (line.precidia) list.push_back({"ControllerStyle", Enumerator{"CS_PRECIDIA", 2}});
  if (line.baud) {
    list.push_back({"MaxBaudRate", RateOf(921600)});
    list.push_back({"MinBaudRate", RateOf(150)});
    list.push_back({"BaudRate", RateOf(*line.baud)});
  }
  if (line.frame_said) AddFrame(list, line);
  if (line.modem) {
    list.push_back({"UseRFModem", true});
    list.push_back({"InstrAddr", *line.modem});
  }
  if (line.infrared) list.push_back({"UseIRDongle", true});
  if (line.cr) list.push_back({"UseRedirector", true});
  if (line.port_switch) {
    list.push_back({"UseSmartSwitch", true});
    list.push_back({"SmartSwitch.Style", SwitchOf(line.switch_ports)});
    list.push_back({"SmartSwitch.SSPort", *line.port_switch});
  }
  return settings;
}

// SetEOS would end a read at the first digit of EOSChar. The END of the device is enough.
SnippetSettings Of(const GpibAddress& gpib) {
  if (!gpib.primary) throw UsageError("a program needs the number of the device, as in \"gpib:5\"");
  SnippetSettings settings{{"csIEEE", 2}, "CKespIEEE", {}, ""};
  auto& list = settings.assignments;
  list.push_back({"PrimaryAddress", *gpib.primary});
  if (gpib.secondary != 0) list.push_back({"SecondaryAddress", gpib.secondary});
  list.push_back({"EOSChar", std::to_string(gpib.eos)});
  list.push_back({"SetEOS", false});
  if (!gpib.clear) list.push_back({"ClearDevice", false});
  return settings;
}

SnippetSettings Of(const UsbAddress& usb) {
  throw UsageError("the adapter " + usb.serial + " has no COM port here");
}

}  // namespace

SnippetSettings SettingsFor(const Address& address) {
  return std::visit([](const auto& each) { return Of(each); }, address);
}

}  // namespace kesp::console
