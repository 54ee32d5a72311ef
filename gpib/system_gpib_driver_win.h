// The process's one binding of the GPIB driver.
#pragma once

#include "gpib/gpib_driver.h"

namespace kesp {

// The binding over the driver that is installed.
GpibDriver& SystemGpibDriver();

}  // namespace kesp
