// The files that may be the GPIB's driver.
#pragma once

#include <vector>

#include "console/gpib_file.h"

namespace kesp::console {

// Those that are there, in the order in which the library looks when kesp of that width is its host; last
// those beside the library that clients get. Folders that a program names itself are not known here.
std::vector<GpibFile> FindGpibFiles(int bits);

}  // namespace kesp::console
