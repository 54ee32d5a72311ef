// "kesp snippet": prints a program that talks to an address.
#include "console/commands.h"
#include "console/snippet.h"
#include "console/usb_address.h"

namespace kesp::console {

int Run(const SnippetOptions& options, Surroundings& around) {
  around.console.Write(
      Snippet(options.language, WithPort(ParseAddress(options.address), around.machine), options.address));
  return kExitDone;
}

}  // namespace kesp::console
