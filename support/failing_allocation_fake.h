// Memory that runs out when a test says so.
#pragma once

namespace kesp {

// The nth allocation by operator new of this thread, from its making on, fails. One at a time for each
// thread.
class FailingAllocation {
 public:
  explicit FailingAllocation(int nth);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
};

}  // namespace kesp
