// The seams on the real system.
#pragma once

#include "support/environment.h"

namespace kesp {

// The environment of this process. Every thread may use its members.
Environment& SystemEnvironment();

}  // namespace kesp
