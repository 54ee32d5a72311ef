// kesp: the library at the command line.
#include "console/options.h"

int wmain() {
  return kesp::console::kExitUsage;
}
