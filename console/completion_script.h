// Scripts that teach a shell the words of the command line.
#pragma once

#include <string>
#include <vector>

#include "console/command_words.h"

namespace kesp::console {

// For the profile of PowerShell 5 and 7.
std::string PowerShellCompletion(const std::vector<CommandWord>& commands);

}  // namespace kesp::console
