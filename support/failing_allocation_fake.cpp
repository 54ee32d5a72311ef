// The program's own operator new, which counts down to the allocation that is to fail.
#include "failing_allocation.h"

#include <cstdlib>
#include <new>

namespace {

thread_local int allocations_left = 0;  // 0: none is to fail

}  // namespace

void* operator new(std::size_t size) {
  if (allocations_left > 0 && --allocations_left == 0) throw std::bad_alloc();
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

namespace kesp {

FailingAllocation::FailingAllocation(int nth) {
  allocations_left = nth;
}

FailingAllocation::~FailingAllocation() {
  allocations_left = 0;
}

}  // namespace kesp
