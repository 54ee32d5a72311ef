// What a failure of the IEEE-488 transport means for the communication object's status.
#pragma once

#include <cstdint>

#include "support/enumerations.h"

namespace kesp {

// The status after an Initialize that failed with this error number (0 for none).
ECommError IeeeInitializeStatus(std::int32_t number);

}  // namespace kesp
