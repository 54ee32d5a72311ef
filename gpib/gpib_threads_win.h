// The driver binding's data of each thread on Windows.
#pragma once

#include <cstdint>

#include "gpib/gpib_threads.h"

namespace kesp {

// Keeps each thread's data in a fiber-local slot, because its callback runs when a thread ends and before the
// loader's lock is taken, so that the driver can be called from it. Never destroyed: when the process ends,
// the driver may be gone first.
class GpibThreadsWin final : public GpibThreads {
 public:
  GpibThreadsWin();

  // Throws std::bad_alloc when the process has no slot left.
  GpibThread& Current() override;

  // For the unloading of the library: the calling thread is unregistered. The data of other threads stays for
  // good, since the driver writes into it until they end.
  void Release();

 private:
  std::uint32_t slot_;
};

}  // namespace kesp
