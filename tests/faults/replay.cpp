// The table of those cases.
#include "tests/faults/replay.h"

#include <algorithm>

namespace kesp::faults {

namespace {

struct ReplayedCase {
  const char* scenario;
  const char* function;
  unsigned nth;
  // The last of several calls, where their numbers differ from width to width.
  unsigned last = 0;
};

constexpr ReplayedCase kCases[] = {
    // A reply that could not be handed over passed for a success with what the argument held before.
    {"tcp-query", "SysAllocStringLen", 1},
    {"tcp-lines", "SysAllocStringLen", 1},
    {"tcp-binary", "SafeArrayAccessData", 1},
    // A connection stayed open when there was no memory for a line of the trace, and the late reply was taken
    // for that to
    // the next command.
    {"late-calls", "malloc", 132, 142},
    // A window without its object lost every notification of the socket.
    {"tcp-query", "SetWindowLongPtrW", 1},
    {"tcp-query", "SetWindowLongW", 1},
    // The runtime that is linked in ended the process, or wrote through a null pointer.
    {"cold-creation", "malloc", 7},
    {"cold-creation", "calloc", 2},
    {"cold-creation", "calloc", 6},
    {"cold-creation", "realloc", 1},
    // A character that Windows refused once was unknown for as long as the process lived.
    {"cold-late-calls", "MultiByteToWideChar", 14},
    // A dialog's resource was read through a null pointer.
    {"dialog-tcp", "LockResource", 1},
    // A dialog, and a text box, without their object.
    {"dialog-tcp", "SetWindowLongPtrW", 1},
    {"dialog-tcp", "SetWindowLongPtrW", 4},
    {"dialog-tcp", "SetWindowLongW", 1},
    {"dialog-tcp", "SetWindowLongW", 4},
    // A dialog that nobody saw waited for its end.
    {"dialog-tcp", "SetWindowPos", 4},
};

}  // namespace

std::vector<std::string> ReplayedScenarios() {
  std::vector<std::string> names;
  for (const ReplayedCase& replayed : kCases) {
    if (std::find(names.begin(), names.end(), replayed.scenario) == names.end())
      names.emplace_back(replayed.scenario);
  }
  return names;
}

bool IsReplayed(const std::string& scenario, const std::string& function, unsigned nth) {
  return std::any_of(std::begin(kCases), std::end(kCases), [&](const ReplayedCase& replayed) {
    return scenario == replayed.scenario && function == replayed.function && nth >= replayed.nth &&
           nth <= std::max(replayed.nth, replayed.last);
  });
}

}  // namespace kesp::faults
