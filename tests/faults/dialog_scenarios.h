// Scenarios of the settings dialogs.
#pragma once

#include <memory>

#include "tests/faults/scenario.h"

namespace kesp::faults {

std::unique_ptr<Scenario> MakeTcpDialog();
std::unique_ptr<Scenario> MakeSerialDialog();
std::unique_ptr<Scenario> MakeModemDialog();

}  // namespace kesp::faults
