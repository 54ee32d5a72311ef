// A part done in ten tenths, with a look at what the process holds after each.
#pragma once

#include <cstdio>
#include <string>

#include "tests/soak/part.h"

namespace kesp::soak {

// Does the part `count` times, a multiple of ten, and writes progress, a row for each tenth and the figures
// to `out`. Returns whether nothing grew. Throws std::runtime_error, with the number, when one time went
// wrong.
bool Run(const std::string& name, Part& part, long count, std::FILE* out);

}  // namespace kesp::soak
