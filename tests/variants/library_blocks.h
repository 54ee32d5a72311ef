// The blocks that the library itself takes, whoever calls it.
#pragma once

#include <unordered_map>
#include <vector>

namespace kesp::variants {

// Counts from now on, for good; the library must be loaded. Throws std::runtime_error when it is not.
void CountLibraryBlocks();

// Those of the C runtime that it holds, of all that were made since.
long LibraryBlocks();

// What the process holds.
struct Held {
  long blocks = 0;          // in all heaps
  long library_blocks = 0;  // of them those that the library took for itself

  // Without the record of the simulated driver of the GPIB, which is renewed.
  static Held Now();

  Held operator-(const Held& other) const {
    return {.blocks = blocks - other.blocks, .library_blocks = library_blocks - other.library_blocks};
  }
};

// Looks at who makes the blocks of COM while it lives. One at a time, after faults::CountComBlocks.
class LibraryTexts {
 public:
  LibraryTexts();
  ~LibraryTexts();
  LibraryTexts(const LibraryTexts&) = delete;
  LibraryTexts& operator=(const LibraryTexts&) = delete;

  // The texts that the library has made since and that nobody has freed, those that it handed on included.
  long Left() const;

 private:
  const std::unordered_map<void*, std::vector<void*>> before_;
};

}  // namespace kesp::variants
