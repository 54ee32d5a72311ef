// How long the RS-232 dialog takes to come.
#pragma once

#include "bench/serial_client.h"

namespace kesp::bench {

// Microseconds from the call of Edit until the dialog stands painted and filled and takes its first message.
struct DialogOpening {
  double first_in_process;
  double later;  // the median of eleven
};

// Opens the dialog with all its pages again and again, and cancels it. Throws std::runtime_error when it does
// not come.
DialogOpening MeasureDialogOpening(const SerialClient& client);

}  // namespace kesp::bench
