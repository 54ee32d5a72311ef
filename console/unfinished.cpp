// Commands that are not written yet.
#include "console/commands.h"
#include "console/usage_error.h"

namespace kesp::console {

int Run(const SnippetOptions&, Surroundings&) {
  throw UsageError("not written yet");
}

}  // namespace kesp::console
