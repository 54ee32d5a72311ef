// How much of the process's memory is in use.
#pragma once

#include <cstddef>

namespace kesp::variants {

// The blocks in use in all heaps of the process.
std::size_t HeapBlocks();

}  // namespace kesp::variants
