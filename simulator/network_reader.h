// Reads a network: instruments with their addresses.
#pragma once

#include "simulator/fields.h"
#include "simulator/network_description.h"

namespace kesp::simulator {

// Whether the value is a network: a device of it has a member "tcp".
bool IsNetwork(const Entry& entry);

NetworkDescription ReadNetwork(const Entry& entry);

}  // namespace kesp::simulator
