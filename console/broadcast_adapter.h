// The network adapter by which a broadcast leaves.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "console/network_adapter.h"

namespace kesp::console {

struct BroadcastAdapter {
  std::string name;     // as the user sees it: "Ethernet 2"
  std::string address;  // its IPv4 address
};

// The one that the system takes for 255.255.255.255; nothing where it has none, or does not tell.
std::optional<BroadcastAdapter> BroadcastAdapterAmong(const std::vector<NetworkAdapter>& adapters);

}  // namespace kesp::console
