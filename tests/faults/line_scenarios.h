// Scenarios of the serial and the IEEE-488 transport.
#pragma once

#include <memory>

#include "tests/faults/scenario.h"

namespace kesp::faults {

std::unique_ptr<Scenario> MakeSerialQuery();
std::unique_ptr<Scenario> MakeSerialBinary();
std::unique_ptr<Scenario> MakeSerialDetection();
std::unique_ptr<Scenario> MakeSerialNobody();
std::unique_ptr<Scenario> MakeGpibQuery();
std::unique_ptr<Scenario> MakeGpibDetection();

}  // namespace kesp::faults
