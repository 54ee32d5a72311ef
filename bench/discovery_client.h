// The library's discovery as its clients see it.
#pragma once

#include "bench/discovery_figures.h"

namespace kesp::bench {

// AutoDetect of a new network transport that is set to UDP. Throws std::runtime_error for a failed call.
DiscoveryFigures Discover(const Senders& senders);

}  // namespace kesp::bench
