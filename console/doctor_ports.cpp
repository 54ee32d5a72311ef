// The doctor's rules about COM ports.
#include "console/doctor.h"
#include "console/port_identity.h"
#include "console/ports.h"

namespace kesp::console {
namespace {

constexpr int kShortLatency = 2;
constexpr int kHighestPort = 256;

std::string Described(const PortDevice& port) {
  const PortIdentity identity = IdentityOf(port);
  std::string text = StateOf({port, PortUse::kNotTried});
  for (const std::string* word : {&port.friendly_name, &identity.vendor, &identity.product, &identity.serial})
    if (!word->empty()) text += ", " + *word;
  return text;
}

std::string ShorterLatency(const PortDevice& port) {
  return R"(Device Manager, the port's Port Settings, Advanced, Latency Timer: 1 ms; or as administrator: reg add )"
         R"("HKLM\SYSTEM\CurrentControlSet\Enum\)" +
         port.instance + R"(\Device Parameters" /v LatencyTimer /t REG_DWORD /d 1 /f, and plug it in again)";
}

Finding Of(const PortDevice& port) {
  const std::string text = Described(port);
  if (!port.present) return Well(port.name, text);
  if (PortNumber(port.name) > kHighestPort) {
    return Warning(port.name, text + "; the library takes COM1 to COM256",
                   "Device Manager, the port's Port Settings, Advanced, COM Port Number: one up to COM256");
  }
  if (port.latency_ms.value_or(0) > kShortLatency) {
    return Warning(port.name,
                   text + "; the adapter holds back the end of each reply for up to " +
                       std::to_string(*port.latency_ms) + " ms",
                   ShorterLatency(port));
  }
  return Well(port.name, text);
}

}  // namespace

Findings PortFindings(Machine& machine) {
  Findings findings;
  for (const PortDevice& port : InNaturalOrder(machine.Ports())) findings.push_back(Of(port));
  if (findings.empty()) findings.push_back(Well("COM ports", "there are none"));
  return findings;
}

}  // namespace kesp::console
