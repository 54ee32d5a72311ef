// A call as a line of text.
#pragma once

#include <string>

#include "tests/gpib_driver/call_record.h"

namespace kesp::simulated_bus {

// For example: 1 ibwrt(1,"*IDN?\n",6) = 256 sta 0100 err 0 cnt 6
std::string TextOf(const CallRecord::Line& line);

}  // namespace kesp::simulated_bus
