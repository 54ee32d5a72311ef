// How long the RS-232 dialog takes to come.
#pragma once

#include "bench/serial_client.h"

namespace kesp::bench {

// Opens the dialog with all its pages again and again, and cancels it. Microseconds, a median, from the call
// of Edit until the dialog stands painted and filled and takes its first message. Throws std::runtime_error
// when it does not come.
double MeasureDialogOpening(const SerialClient& client);

}  // namespace kesp::bench
