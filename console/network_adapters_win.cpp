// Adapters by IP Helper, with their profiles and the firewall's settings for these.
#include "console/network_adapters_win.h"

#include <winsock2.h>
// After it.
#include <iphlpapi.h>
#include <ws2tcpip.h>

#include <algorithm>

#include "console/firewall_win.h"
#include "console/network_profiles_win.h"
#include "console/wide_text_win.h"

namespace kesp::console {
namespace {

std::string DottedForm(const SOCKET_ADDRESS& address) {
  const auto* internet = reinterpret_cast<const sockaddr_in*>(address.lpSockaddr);
  const auto* bytes = reinterpret_cast<const unsigned char*>(&internet->sin_addr);
  std::string text;
  for (int i = 0; i < 4; ++i) text += (i > 0 ? "." : "") + std::to_string(bytes[i]);
  return text;
}

std::string TextOf(const wchar_t* text) {
  return text == nullptr ? "" : ToUtf8(text);
}

NetworkAdapter AdapterOf(const IP_ADAPTER_ADDRESSES& entry, DWORD taking_broadcast,
                         const NetworkProfiles& profiles) {
  NetworkAdapter adapter;
  adapter.index = entry.IfIndex;
  adapter.name = TextOf(entry.FriendlyName);
  adapter.device = TextOf(entry.Description);
  adapter.metric = entry.Ipv4Metric;
  for (const auto* each = entry.FirstUnicastAddress; each != nullptr; each = each->Next)
    if (each->Address.lpSockaddr->sa_family == AF_INET)
      adapter.addresses.push_back(DottedForm(each->Address));
  adapter.takes_broadcast = entry.IfIndex == taking_broadcast;
  adapter.profile = profiles.ProfileOf(entry.AdapterName);
  const FirewallProfile firewall = FirewallFor(adapter.profile);
  adapter.firewall = firewall.on;
  adapter.replies_blocked = firewall.replies_blocked;
  adapter.by_policy = firewall.by_policy;
  return adapter;
}

// The table of addresses, in a buffer of its own.
std::vector<unsigned char> AddressTable() {
  ULONG size = 16 * 1024;
  for (int attempt = 0; attempt < 4; ++attempt) {
    std::vector<unsigned char> table(size);
    const ULONG result = GetAdaptersAddresses(
        AF_INET, GAA_FLAG_SKIP_ANYCAST | GAA_FLAG_SKIP_MULTICAST | GAA_FLAG_SKIP_DNS_SERVER, nullptr,
        reinterpret_cast<IP_ADAPTER_ADDRESSES*>(table.data()), &size);
    if (result == ERROR_SUCCESS) return table;
    if (result != ERROR_BUFFER_OVERFLOW) break;
  }
  return {};
}

}  // namespace

std::vector<NetworkAdapter> ListNetworkAdapters() {
  std::vector<NetworkAdapter> adapters;
  const std::vector<unsigned char> table = AddressTable();
  if (table.empty()) return adapters;
  DWORD taking_broadcast = 0;
  if (GetBestInterface(INADDR_BROADCAST, &taking_broadcast) != NO_ERROR) taking_broadcast = 0;
  const NetworkProfiles profiles;
  for (const auto* entry = reinterpret_cast<const IP_ADAPTER_ADDRESSES*>(table.data()); entry != nullptr;
       entry = entry->Next) {
    if (entry->OperStatus != IfOperStatusUp || entry->IfType == IF_TYPE_SOFTWARE_LOOPBACK) continue;
    NetworkAdapter adapter = AdapterOf(*entry, taking_broadcast, profiles);
    if (!adapter.addresses.empty()) adapters.push_back(std::move(adapter));
  }
  std::stable_sort(
      adapters.begin(), adapters.end(),
      [](const NetworkAdapter& one, const NetworkAdapter& other) { return one.metric < other.metric; });
  return adapters;
}

}  // namespace kesp::console
