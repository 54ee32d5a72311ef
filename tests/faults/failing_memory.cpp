// The C runtime's memory functions: how they fail, and which blocks the library holds.
#include <cstdlib>

#include "tests/faults/functions.h"
#include "tests/faults/held_blocks.h"

namespace kesp::faults {

namespace {

HookState malloc_state, calloc_state, realloc_state, free_state, strdup_state;

void* Note(void* block) {
  if (block != nullptr) LibraryBlocks().Note(block);
  return block;
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
  LibraryBlocks().Forget(block);
  return Note(std::realloc(block, size));
}

char* Strdup(const char* text) {
  return Refuses(strdup_state) ? nullptr : static_cast<char*>(Note(_strdup(text)));
}

void Free(void* block) {
  LibraryBlocks().Forget(block);
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

}  // namespace kesp::faults
