// What stands behind "com3" and "usb:SERIAL", read and written.
#pragma once

#include <string>

#include "console/address_reader.h"

namespace kesp::console {

// Reads up to the end.
LineOptions ReadLineOptions(AddressReader& reader);

std::string TextOf(const LineOptions& line);

}  // namespace kesp::console
