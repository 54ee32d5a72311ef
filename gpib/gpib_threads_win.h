// The driver binding's data of each thread on Windows.
#pragma once

#include "gpib/gpib_threads.h"

namespace kesp {

// Each thread's data is given back from a fiber-local slot, because its callback runs when a thread ends and
// before the loader's lock is taken, so that the driver can be called from it. The first call keeps the
// library loaded for the rest of the process: the callback must be there whenever a thread ends.
class GpibThreadsWin final : public GpibThreads {
 public:
  // Throws std::bad_alloc when the process has no slot left; a later call tries again.
  GpibThread& Current() override;
};

}  // namespace kesp
