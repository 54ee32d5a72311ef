// All that a command needs of the world around it.
#pragma once

#include "console/broadcast_adapter.h"
#include "console/clock.h"
#include "console/console.h"
#include "console/library.h"

namespace kesp::console {

class Machine;

struct Surroundings {
  Console& console;
  Clock& clock;
  Machine& machine;
  // Loads the DLL at the first call. Throws NoLibrary when it cannot be had.
  std::function<Library&()> library;
  // By which the broadcast of a discovery leaves; nothing where the system does not tell.
  std::function<std::optional<BroadcastAdapter>()> broadcast_adapter = [] {
    return std::optional<BroadcastAdapter>();
  };
};

}  // namespace kesp::console
