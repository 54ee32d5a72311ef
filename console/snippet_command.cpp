// "kesp snippet": prints a program that talks to an address.
#include "console/commands.h"
#include "console/new_file.h"
#include "console/snippet.h"
#include "console/usb_address.h"

namespace kesp::console {

int Run(const SnippetOptions& options, Surroundings& around) {
  const std::string program =
      Snippet(options.language, WithPort(ParseAddress(options.address), around.machine), options.address);
  if (options.output.empty()) {
    around.console.Write(program);
  } else {
    WriteNewFile(options.output, program);
  }
  return kExitDone;
}

}  // namespace kesp::console
