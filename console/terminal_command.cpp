// "kesp terminal": a conversation.
#include "console/commands.h"
#include "console/terminal.h"

namespace kesp::console {

int Run(const TerminalOptions& options, Surroundings& around) {
  const bool done = Terminal(options, around).Run();
  // Who types sees what failed, and goes on; a script's caller asks for the exit code.
  return done || around.console.IsTypedAt() ? kExitDone : kExitFailed;
}

}  // namespace kesp::console
