// Memory that runs out when a test says so.
#pragma once

#include "support/failing_call_fake.h"

namespace kesp {

// What the program's operator new asks at each allocation; one for each thread. Only programs that are linked
// with kesp_failing_allocation have an operator new that does.
struct Allocations {
  FailingCallFake calls;
  bool counted = false;  // others pass
};

inline thread_local Allocations allocations;

// The nth allocation by operator new of this thread, from its making on, fails, with kFromThenOn all behind
// it, too; with 0 they are only counted. One at a time for each thread.
class FailingAllocation {
 public:
  explicit FailingAllocation(int nth, FaultLength length = FaultLength::kOneCall) {
    allocations = {};
    allocations.calls.Fail(nth, length);
    allocations.counted = true;
  }
  ~FailingAllocation() { allocations.counted = false; }
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  // So far.
  int calls() const { return allocations.calls.calls(); }
  int failures() const { return allocations.calls.failures(); }
};

// Allocations within its life pass: for what stands in for code that has no C++ exceptions.
class PassingAllocations {
 public:
  PassingAllocations() { allocations.counted = false; }
  ~PassingAllocations() { allocations.counted = counted_; }
  PassingAllocations(const PassingAllocations&) = delete;
  PassingAllocations& operator=(const PassingAllocations&) = delete;

 private:
  bool counted_ = allocations.counted;
};

}  // namespace kesp
