// The look for ports that the RS-232 dialog begins with.
#pragma once

#include "bench/serial_client.h"

namespace kesp::bench {

// Asks for COM1 to COM256 as the dialog does, makes its form, and opens the dialog itself, which takes a
// screen. Prints a row for each, in milliseconds. Throws std::runtime_error when the dialog does not come.
void MeasurePortLook(const SerialClient& client);

}  // namespace kesp::bench
