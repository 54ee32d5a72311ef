// The commands and their options, as the command line takes them.
#pragma once

#include <string>
#include <vector>

namespace kesp::console {

struct CommandWord {
  std::string name;
  std::string about;
  std::vector<std::string> options;  // "--timeout"
  std::vector<std::string> values;   // of the first argument, where it is one of a few words
};

std::vector<CommandWord> CommandWords();

}  // namespace kesp::console
