// The address of one device, for commands that look for none.
#pragma once

#include <string_view>

#include "console/address.h"

namespace kesp::console {

// As ParseAddress, but "gpib:" without a primary address is a mistake, and so is a controller to which the
// library sends nothing (UsageError).
Address ParseDeviceAddress(std::string_view text);

}  // namespace kesp::console
