// "kesp ports": the COM ports of this machine.
#include "console/commands.h"
#include "console/machine.h"
#include "console/ports.h"

namespace kesp::console {

int Run(const PortsOptions& options, Surroundings& around) {
  std::vector<ListedPort> listed;
  for (const PortDevice& port : InNaturalOrder(around.machine.Ports())) {
    const bool tried = options.probe && port.present;
    listed.push_back({port, tried ? around.machine.Probe(port.name) : PortUse::kNotTried});
  }
  if (listed.empty() && !options.json) around.console.WriteError("this machine has no COM ports\n");
  around.console.Write(options.json ? PortsAsJson(listed) : PortTable(listed));
  return kExitDone;
}

}  // namespace kesp::console
