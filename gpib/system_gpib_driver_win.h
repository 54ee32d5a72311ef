// The process's one binding of the GPIB driver.
#pragma once

#include "gpib/gpib_driver.h"

namespace kesp {

GpibDriver& SystemGpibDriver();

// For the unloading of the library: ends the registration of the calling thread. SystemGpibDriver is not used
// afterwards.
void ReleaseSystemGpibDriver();

}  // namespace kesp
