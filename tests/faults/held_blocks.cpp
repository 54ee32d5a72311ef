// The two kinds of blocks.
#include "tests/faults/held_blocks.h"

#include <utility>

#include "tests/clients/com_block_spy.h"
#include "tests/faults/injector.h"

namespace kesp::faults {

void HeldBlocks::Note(void* block) {
  std::vector<void*> stack;
  if (TheInjector().keeps_stacks) stack = StackHere();
  const std::lock_guard locked(mutex_);
  held_[block] = std::move(stack);
}

void HeldBlocks::Forget(void* block) {
  const std::lock_guard locked(mutex_);
  held_.erase(block);
}

long HeldBlocks::Count() {
  const std::lock_guard locked(mutex_);
  return static_cast<long>(held_.size());
}

HeldBlocks::Map HeldBlocks::All() {
  const std::lock_guard locked(mutex_);
  return held_;
}

// Never destroyed, since the library and COM give back to the end.
HeldBlocks& LibraryBlocks() {
  static auto* blocks = new HeldBlocks;
  return *blocks;
}

HeldBlocks& ComBlocks() {
  static auto* blocks = new HeldBlocks;
  return *blocks;
}

void CountComBlocks() {
  static auto* spy = new clients::ComBlockSpy([](void* block) { ComBlocks().Note(block); },
                                              [](void* block) { ComBlocks().Forget(block); });
  (void)spy;
}

}  // namespace kesp::faults
