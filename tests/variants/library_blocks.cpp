// Counting at the library's imports, and reading stacks.
#include "tests/variants/library_blocks.h"

#include <windows.h>

#include <stdexcept>

#include "bench/allocation_counter.h"
#include "tests/faults/held_blocks.h"
#include "tests/faults/injector.h"
#include "tests/variants/block_count.h"
#include "tests/variants/harmless_state.h"

namespace kesp::variants {

namespace {

constexpr wchar_t kLibrary[] = L"KespCommObj.dll";

HMODULE ModuleOf(const void* address) {
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     static_cast<const wchar_t*>(address), &module);
  return module;
}

// The counting function stands between the library and SysAllocStringLen. Where the automation library makes
// a text for itself, it is called by the library, too, but not so.
bool IsMadeByLibrary(const std::vector<void*>& stack) {
  const HMODULE program = GetModuleHandleW(nullptr);
  const HMODULE library = GetModuleHandleW(kLibrary);
  bool has_left_program = false;
  for (std::size_t i = 0; i + 1 < stack.size(); ++i) {
    const bool is_program = ModuleOf(stack[i]) == program;
    // The first frames are those of the spy.
    if (has_left_program && is_program) return ModuleOf(stack[i + 1]) == library;
    has_left_program = has_left_program || !is_program;
    if (ModuleOf(stack[i]) == library) return false;
  }
  return false;
}

}  // namespace

void CountLibraryBlocks() {
  HMODULE library = nullptr;
  if (GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN, kLibrary, &library) == FALSE)
    throw std::runtime_error("the library goes by another name");
  bench::CountAllocationsOf(library);
}

long LibraryBlocks() {
  const bench::Allocations counted = bench::AllocationsSoFar();
  return static_cast<long>(counted.made - counted.freed);
}

Held Held::Now() {
  RenewBus();
  return {.blocks = static_cast<long>(HeapBlocks()), .library_blocks = LibraryBlocks()};
}

LibraryTexts::LibraryTexts() : before_(faults::ComBlocks().All()) {
  faults::TheInjector().keeps_stacks = true;
}

LibraryTexts::~LibraryTexts() {
  faults::TheInjector().keeps_stacks = false;
}

long LibraryTexts::Left() const {
  long left = 0;
  for (const auto& [block, stack] : faults::ComBlocks().All()) {
    if (!before_.contains(block) && IsMadeByLibrary(stack)) ++left;
  }
  return left;
}

}  // namespace kesp::variants
