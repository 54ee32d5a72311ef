// "kesp snippet": prints a program that talks to an address.
#include "console/commands.h"
#include "console/snippet.h"

namespace kesp::console {

int Run(const SnippetOptions& options, Surroundings& around) {
  around.console.Write(Snippet(options.language, ParseAddress(options.address), options.address));
  return kExitDone;
}

}  // namespace kesp::console
