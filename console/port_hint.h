// What helps where a COM port has failed.
#pragma once

#include <string>

#include "console/library.h"

namespace kesp::console {

// One sentence; empty where the failure is another one.
std::string PortHint(const LibraryError& error);

}  // namespace kesp::console
