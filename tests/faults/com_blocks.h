// The blocks of COM's memory in this process: texts and arrays of automation, type information, error
// information.
#pragma once

#include <cstddef>
#include <unordered_map>
#include <vector>

namespace kesp::faults {

// Counts from now on, for good. Texts are given back to COM at once from then on, not kept for the next one.
void CountComBlocks();

std::size_t ComBlocksHeld();
std::unordered_map<void*, std::vector<void*>> HeldComBlocks();

}  // namespace kesp::faults
