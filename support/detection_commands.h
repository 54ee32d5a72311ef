// The identification commands with which a transport looks for an instrument.
#pragma once

#include <span>

#include "support/enumerations.h"

namespace kesp {

// The commands of a level, in the order in which they are tried: "*IDN?" (SCPI, from dlSCPIOnly on), "*VER"
// (from dlCommonCommands on), "t" (from dlAllCommands on). A level beyond these counts as the nearest; none
// below.
std::span<const wchar_t* const> DetectionCommands(EDetectLevel level);

}  // namespace kesp
