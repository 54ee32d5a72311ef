// Scenarios of late-bound clients and of handlers of events.
#pragma once

#include <memory>

#include "tests/faults/scenario.h"

namespace kesp::faults {

std::unique_ptr<Scenario> MakeLateCalls();
std::unique_ptr<Scenario> MakeEvents();

}  // namespace kesp::faults
