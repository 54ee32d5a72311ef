// Choosing the adapter of a broadcast.
#include "console/broadcast_adapter.h"

#include <algorithm>

namespace kesp::console {

std::optional<BroadcastAdapter> BroadcastAdapterAmong(const std::vector<NetworkAdapter>& adapters) {
  const auto found = std::find_if(adapters.begin(), adapters.end(),
                                  [](const NetworkAdapter& each) { return each.takes_broadcast; });
  if (found == adapters.end()) return std::nullopt;
  return BroadcastAdapter{found->name, found->addresses.empty() ? "" : found->addresses.front()};
}

}  // namespace kesp::console
