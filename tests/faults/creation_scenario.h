// A scenario of objects that are made.
#pragma once

#include <memory>

#include "tests/faults/scenario.h"

namespace kesp::faults {

std::unique_ptr<Scenario> MakeCreation();

}  // namespace kesp::faults
