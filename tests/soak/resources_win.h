// What this process holds now, as the system tells it.
#pragma once

#include "tests/soak/resources.h"

namespace kesp::soak {

// Takes about a tenth of a second where the system does not count handles and windows, as Wine does not.
Resources ReadResources();

}  // namespace kesp::soak
