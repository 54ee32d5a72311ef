// The blocks of memory that the library holds.
#pragma once

#include <cstddef>
#include <unordered_map>
#include <vector>

namespace kesp::faults {

std::size_t BlocksHeld();

// With who asked for each, where stacks are kept.
std::unordered_map<void*, std::vector<void*>> HeldBlocks();

}  // namespace kesp::faults
