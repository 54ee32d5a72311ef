// A scenario of the library's registration.
#pragma once

#include <memory>

#include "tests/faults/scenario.h"

namespace kesp::faults {

std::unique_ptr<Scenario> MakeRegistration();

}  // namespace kesp::faults
