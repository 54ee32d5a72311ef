// All that a command needs of the world around it.
#pragma once

#include "console/clock.h"
#include "console/console.h"
#include "console/library.h"

namespace kesp::console {

class Machine;

struct Surroundings {
  Console& console;
  Clock& clock;
  Machine& machine;
  // Loads the DLL at the first call. Throws LibraryError when it cannot be had.
  std::function<Library&()> library;
};

}  // namespace kesp::console
