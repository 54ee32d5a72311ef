// The table of those cases.
#include "tests/faults/replay.h"

#include <algorithm>
#include <iterator>

#include "tests/faults/injector.h"

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
    // for that to the next command.
    {"late-calls", "malloc", 72, 86},
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
static_assert(std::size(kCases) < 32);

}  // namespace

std::vector<std::string> ReplayedScenarios() {
  std::vector<std::string> names;
  for (const ReplayedCase& replayed : kCases) {
    if (std::find(names.begin(), names.end(), replayed.scenario) == names.end())
      names.emplace_back(replayed.scenario);
  }
  return names;
}

unsigned ReplayedBits(const std::string& scenario, const std::string& function, unsigned nth) {
  unsigned bits = 0;
  for (std::size_t i = 0; i < std::size(kCases); ++i) {
    const ReplayedCase& replayed = kCases[i];
    const bool is_it = scenario == replayed.scenario && function == replayed.function &&
                       nth >= replayed.nth && nth <= std::max(replayed.nth, replayed.last);
    if (is_it) bits |= 1u << i;
  }
  return bits;
}

std::vector<std::string> MissedCases(const std::string& scenario, unsigned replayed_bits) {
  const auto& functions = TheInjector().functions();
  std::vector<std::string> missed;
  for (std::size_t i = 0; i < std::size(kCases); ++i) {
    if (scenario != kCases[i].scenario || (replayed_bits & 1u << i) != 0) continue;
    const std::string name = kCases[i].function;
    const bool is_imported = std::any_of(functions.begin(), functions.end(),
                                         [&](const Import& function) { return name == function.name(); });
    if (is_imported) missed.push_back(name + " " + std::to_string(kCases[i].nth));
  }
  return missed;
}

}  // namespace kesp::faults
