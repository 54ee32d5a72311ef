// Asking the kesp.exe of the other width.
#pragma once

#include "console/library_report.h"

namespace kesp::console {

OtherProgram AskOtherProgram();

}  // namespace kesp::console
