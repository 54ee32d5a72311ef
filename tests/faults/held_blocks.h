// Blocks of memory that were taken and not given back, each with who asked for it.
#pragma once

#include <cstddef>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace kesp::faults {

// In this program's own memory, so never in the library's or COM's. On any thread.
class HeldBlocks {
 public:
  // The addresses from where a block was asked for; empty where no stacks are kept.
  using Map = std::unordered_map<void*, std::vector<void*>>;

  void Note(void* block);
  void Forget(void* block);
  long Count();
  Map All();

 private:
  std::mutex mutex_;
  Map held_;
};

// Of the C runtime's memory, those of the library.
HeldBlocks& LibraryBlocks();

// Of COM's memory, those of the whole process.
HeldBlocks& ComBlocks();

// Has those of COM counted from now on, for good.
void CountComBlocks();

}  // namespace kesp::faults
