// The network adapters of Windows.
#pragma once

#include <vector>

#include "console/network_adapter.h"

namespace kesp::console {

// Those that are up and have an address of IPv4, without the loopback one, in the order of their metrics.
std::vector<NetworkAdapter> ListNetworkAdapters();

}  // namespace kesp::console
