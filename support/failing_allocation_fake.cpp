// The program's own operator new, which fails when a test says so.
#include "support/failing_allocation_fake.h"

#include <cstdlib>
#include <new>

void* operator new(std::size_t size) {
  kesp::Allocations& allocations = kesp::allocations;
  if (allocations.counted && allocations.calls.IsFailing()) throw std::bad_alloc();
  void* memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
