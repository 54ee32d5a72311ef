// The child processes of a sweep, and what comes of them.
#pragma once

#include <windows.h>

#include "tests/faults/options.h"

namespace kesp::faults {

// Exit codes of a child.
inline constexpr UINT kCrashed = 70;
inline constexpr UINT kFailsWithoutFault = 71;
inline constexpr UINT kHung = 72;

// Sweeps the scenarios and prints the figures. True when nothing was broken.
bool RunChildren(const Options& options);

}  // namespace kesp::faults
