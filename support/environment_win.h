// The seams on the real system.
#pragma once

#include "support/environment.h"

namespace kesp {

// The environment of this process. Its members keep no state, so every thread may use it.
Environment& SystemEnvironment();

}  // namespace kesp
