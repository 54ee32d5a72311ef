// The C runtime's memory functions: how they fail, and which blocks the library holds.
#include "tests/faults/failing_memory.h"

#include <cstdlib>
#include <mutex>
#include <unordered_map>

#include "tests/faults/functions.h"

namespace kesp::faults {

namespace {

HookState malloc_state, calloc_state, realloc_state, free_state, strdup_state;

// The library's blocks, each with who asked for it. This program's own memory, so never the library's.
struct Blocks {
  std::mutex mutex;
  std::unordered_map<void*, std::vector<void*>> held;
};

Blocks& TheBlocks() {
  static Blocks blocks;
  return blocks;
}

void* Note(void* block) {
  if (block == nullptr) return nullptr;
  std::vector<void*> stack;
  if (TheInjector().keeps_stacks) stack = StackHere();
  Blocks& blocks = TheBlocks();
  const std::lock_guard locked(blocks.mutex);
  blocks.held[block] = std::move(stack);
  return block;
}

void Forget(void* block) {
  Blocks& blocks = TheBlocks();
  const std::lock_guard locked(blocks.mutex);
  blocks.held.erase(block);
}

bool Refuses(const HookState& state) {
  return TheInjector().Ask(state.number) != nullptr;
}

void* Malloc(std::size_t size) {
  return Refuses(malloc_state) ? nullptr : Note(std::malloc(size));
}

void* Calloc(std::size_t count, std::size_t size) {
  return Refuses(calloc_state) ? nullptr : Note(std::calloc(count, size));
}

void* Realloc(void* block, std::size_t size) {
  if (Refuses(realloc_state)) return nullptr;
  Forget(block);
  return Note(std::realloc(block, size));
}

char* Strdup(const char* text) {
  return Refuses(strdup_state) ? nullptr : static_cast<char*>(Note(_strdup(text)));
}

void Free(void* block) {
  Forget(block);
  std::free(block);
}

}  // namespace

void AddMemoryFunctions(std::vector<Import>& functions) {
  const std::vector<Way> null = {{0, ERROR_NOT_ENOUGH_MEMORY}};
  functions.emplace_back("malloc", reinterpret_cast<void*>(&Malloc), malloc_state, null);
  functions.emplace_back("calloc", reinterpret_cast<void*>(&Calloc), calloc_state, null);
  functions.emplace_back("realloc", reinterpret_cast<void*>(&Realloc), realloc_state, null);
  functions.emplace_back("_strdup", reinterpret_cast<void*>(&Strdup), strdup_state, null);
  // It cannot fail, and is here so that blocks are counted.
  functions.emplace_back("free", reinterpret_cast<void*>(&Free), free_state, std::vector<Way>{});
}

std::size_t BlocksHeld() {
  Blocks& blocks = TheBlocks();
  const std::lock_guard locked(blocks.mutex);
  return blocks.held.size();
}

std::unordered_map<void*, std::vector<void*>> HeldBlocks() {
  Blocks& blocks = TheBlocks();
  const std::lock_guard locked(blocks.mutex);
  return blocks.held;
}

}  // namespace kesp::faults
