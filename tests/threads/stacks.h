// Where the threads of another process are, for a process that does not end.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace kesp::threads {

// The functions of one thread as "module!function+offset", the innermost first.
using Stack = std::vector<std::string>;

// Of all threads of the process, each stopped for the moment.
std::vector<Stack> StacksOf(HANDLE process);

// One line for each function.
std::string Text(const std::vector<Stack>& stacks);

// Whether these are the stacks of a process whose end Wine has lost: one thread is left, and it goes round
// for ever in one of three functions that wait for a lock of Wine's own, which a thread that is gone had.
// (Who waits there for something else is in a function below them.)
bool IsLostByWine(const std::vector<Stack>& stacks);

}  // namespace kesp::threads
