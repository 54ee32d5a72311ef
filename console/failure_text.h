// A failure of the library in the words of the program.
#pragma once

#include <string>

#include "console/library.h"

namespace kesp::console {

// "Timeout (cfrTimeout, [CKespTCP - ReadLine()])"
std::string FailureText(const LibraryError& error);

}  // namespace kesp::console
