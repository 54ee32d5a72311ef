// Counting blocks.
#include "tests/variants/block_count.h"

#include <windows.h>

#include <array>

namespace kesp::variants {

std::size_t HeapBlocks() {
  std::array<HANDLE, 64> heaps{};
  const DWORD count = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
  std::size_t blocks = 0;
  for (DWORD i = 0; i < count && i < heaps.size(); ++i) {
    HeapLock(heaps[i]);
    PROCESS_HEAP_ENTRY entry{};
    while (HeapWalk(heaps[i], &entry) != FALSE) {
      if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) ++blocks;
    }
    HeapUnlock(heaps[i]);
  }
  return blocks;
}

}  // namespace kesp::variants
