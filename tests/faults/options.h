// What the program is asked for on its command line.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kesp::faults {

struct Options {
  std::vector<std::string> scenarios;
  // Only faults of that function, only of that call, only in that way.
  std::optional<std::string> function;
  std::optional<unsigned> nth;
  std::optional<unsigned> way;
  // No more cases than that for each function.
  unsigned most = 1000;
  // Says only whether every import is in one of the lists.
  bool imports_only = false;
  // Only the cases that once found something.
  bool replays = false;
  // Says only which scenarios there are.
  bool lists = false;
  // Tells who made the call that fails.
  bool tells_stacks = false;

  // Of a child process: the shared memory, and the case behind which it begins.
  std::string child;
  long after_index = -1;
  long after_nth = 0;
  long after_way = 0;
};

// Throws std::runtime_error for what it does not know.
Options ReadOptions(const std::vector<std::string>& arguments);

// The command line of a child that goes on behind that case.
std::string ChildArguments(const Options& options, const std::string& scenario);

}  // namespace kesp::faults
