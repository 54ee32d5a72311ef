// What the process holds at a moment: memory, handles, windows, and what the library took from the system.
#pragma once

#include <string>
#include <vector>

namespace kesp::faults {

struct Level {
  const char* name;
  long count;
};

using Levels = std::vector<Level>;

Levels LevelsNow();

// Which are higher than before, as "blocks of the library +2, handles +1"; empty where none is.
std::string Growth(const Levels& before, const Levels& after);

}  // namespace kesp::faults
