// The doctor's rules about network adapters, and the broadcast that looks for instruments.
#include <algorithm>

#include "console/doctor.h"

namespace kesp::console {
namespace {

constexpr const char* kSubject = "Network adapter";

std::string Firewall(const NetworkAdapter& adapter) {
  const std::string profile = adapter.profile.empty() ? "" : " (" + adapter.profile + " network)";
  if (!adapter.firewall) return "firewall not known" + profile;
  return std::string(*adapter.firewall ? "firewall on" : "firewall off") + profile;
}

std::string Described(const NetworkAdapter& adapter) {
  std::string text = adapter.name + ", " + adapter.device + ", index " + std::to_string(adapter.index) +
                     ", metric " + std::to_string(adapter.metric);
  for (const std::string& address : adapter.addresses) text += ", " + address;
  return text + ", " + Firewall(adapter) +
         (adapter.takes_broadcast ? "; takes the broadcast that looks for instruments" : "");
}

Finding Of(const NetworkAdapter& adapter) {
  const std::string text = Described(adapter);
  if (!adapter.takes_broadcast || !adapter.replies_blocked || !adapter.firewall.value_or(true))
    return Well(kSubject, text);
  if (adapter.by_policy) {
    return Warning(kSubject, text + "; the firewall keeps out the replies, as a policy says",
                   "ask the administrators to allow unicast responses to broadcasts in the " +
                       adapter.profile + " profile; addresses can be used without that");
  }
  return Warning(kSubject, text + "; the firewall keeps out the replies",
                 "as administrator: netsh advfirewall set " + adapter.profile +
                     "profile settings unicastresponsetomulticast enable");
}

// Instruments behind another adapter do not hear the broadcast.
Findings Choice(const std::vector<NetworkAdapter>& adapters) {
  const auto takes = std::find_if(adapters.begin(), adapters.end(),
                                  [](const NetworkAdapter& each) { return each.takes_broadcast; });
  if (takes == adapters.end()) {
    return {Warning("Broadcast", "no network adapter takes it: no instruments can be found",
                    "connect this machine to the instruments' network; addresses can be used without that")};
  }
  if (adapters.size() == 1) return {};
  return {Warning(
      "Broadcast",
      "leaves by " + takes->name +
          " only; instruments behind the other adapters are not found, but can "
          "be reached by their address",
      "give the adapter of the instruments the least metric; as administrator: netsh interface ipv4 set "
      "interface INDEX metric=1")};
}

}  // namespace

Findings NetworkFindings(Machine& machine) {
  const std::vector<NetworkAdapter> adapters = machine.NetworkAdapters();
  Findings findings;
  for (const NetworkAdapter& adapter : adapters) findings.push_back(Of(adapter));
  Append(findings, Choice(adapters));
  return findings;
}

}  // namespace kesp::console
