// "kesp completion": what the shell is to offer while the command line is typed.
#include "console/command_words.h"
#include "console/commands.h"
#include "console/completion_script.h"

namespace kesp::console {

int Run(const CompletionOptions& /*unused*/, Surroundings& around) {
  around.console.Write(PowerShellCompletion(CommandWords()));
  return kExitDone;
}

}  // namespace kesp::console
