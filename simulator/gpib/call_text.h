// A call as a line of text.
#pragma once

#include <string>

#include "simulator/gpib/call_record.h"

namespace kesp::simulator::gpib {

// For example: 1 ibwrt(1,"*IDN?\n",6) = 256 sta 0100 err 0 cnt 6
std::string TextOf(const CallRecord::Line& line);

}  // namespace kesp::simulator::gpib
