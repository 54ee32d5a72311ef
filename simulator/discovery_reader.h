// Reads how a device answers discovery.
#pragma once

#include "simulator/discovery_answer.h"
#include "simulator/fields.h"

namespace kesp::simulator {

// An answer as ReadAnswer takes it, with the actions that make sense for datagrams. Texts have no terminator
// but the "end" that they give.
DiscoveryAnswer ReadDiscoveryAnswer(const Entry& entry);

}  // namespace kesp::simulator
