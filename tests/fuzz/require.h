// What must hold for every input of a fuzzer.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace kesp {

// Ends the program where `holds` is false, which the fuzzer takes for a crash. `what` says what was to hold.
inline void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  std::abort();
}

}  // namespace kesp
