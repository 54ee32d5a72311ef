// "--since": the moment from which the exchanges of a trace are wanted.
#pragma once

#include <string>
#include <string_view>

#include "console/regional_time.h"

namespace kesp::console {

// "14:05" and "14:05:09" on the day of `last`, the trace's last line; "2026-11-22", "2026-11-22 14:05:09";
// "10min" before now. Throws UsageError for anything else.
LocalSeconds ReadSince(std::string_view text, LocalSeconds now, LocalSeconds last);

}  // namespace kesp::console
