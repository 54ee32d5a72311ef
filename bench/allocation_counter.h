// Counts what a DLL allocates, by standing in for its imports.
#pragma once

#include <windows.h>

#include <cstdint>

namespace kesp::bench {

struct Allocations {
  std::int64_t made = 0;   // blocks taken from the C runtime: malloc, calloc, realloc of nothing, _strdup
  std::int64_t freed = 0;  // blocks given back
  std::int64_t texts = 0;  // texts made for COM: SysAllocStringLen
};

// From here on, counts the calls of that module, on all threads; for good. Throws std::runtime_error when the
// module does not import the functions by name.
void CountAllocationsOf(HMODULE module);

// All counted so far.
Allocations AllocationsSoFar();

}  // namespace kesp::bench
