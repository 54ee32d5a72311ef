// Lets each function that the library imports fail at each of its calls, and looks at what comes of it.
//
//   sweep_faults [--function NAME] [--nth N] [--way N] [--most N] [--stacks] [--imports] [--list] [--replay]
//   [scenario...]
//
// All scenarios unless some are named. The cases run in child processes: one that crashes or hangs is told,
// and the next child goes on behind its case.
#include <windows.h>

#include <csignal>
#include <cstdio>
#include <stdexcept>

#include "tests/clients/automation.h"
#include "tests/faults/children.h"
#include "tests/faults/held_blocks.h"
#include "tests/faults/library.h"
#include "tests/faults/sweep.h"

namespace kesp::faults {

namespace {

void TellCrash(const char* kind, const void* where) {
  std::printf("  %s at %s\n", kind, PlaceOf(where).c_str());
  for (const void* address : StackHere()) std::printf("    at %s\n", PlaceOf(address).c_str());
  std::fflush(stdout);
}

LONG WINAPI OnException(EXCEPTION_POINTERS* exception) {
  char kind[32];
  std::snprintf(kind, sizeof kind, "exception %08lX", exception->ExceptionRecord->ExceptionCode);
  TellCrash(kind, exception->ExceptionRecord->ExceptionAddress);
  TerminateProcess(GetCurrentProcess(), kCrashed);
  return EXCEPTION_EXECUTE_HANDLER;
}

void OnAbort(int) {
  TellCrash("abort", reinterpret_cast<const void*>(&OnAbort));
  TerminateProcess(GetCurrentProcess(), kCrashed);
}

int RunChild(const Options& options) {
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
  SetUnhandledExceptionFilter(&OnException);
  std::signal(SIGABRT, &OnAbort);
  const SharedProgress progress(std::wstring(options.child.begin(), options.child.end()));
  const clients::Apartment apartment;
  const ScenarioEntry* scenario = FindScenario(options.scenarios.front());
  Sweep sweep(*scenario, options, *progress);
  if (scenario->is_cold) {
    RedirectWhenLoaded();
    TheInjector().tells_stacks = options.tells_stacks;
    return sweep.RunCold() ? 0 : kFailsWithoutFault;
  }
  LoadLibraryWithHooks();
  CountComBlocks();
  if (!sweep.Run()) return kFailsWithoutFault;
  progress->is_done = 1;
  return 0;
}

bool TellImports() {
  LoadLibraryWithHooks();
  const ImportSummary summary = SummaryOfImports();
  for (const std::string& name : summary.unlisted) {
    std::printf(
        "%s is imported and must be in one of the lists of tests/faults: how it fails, or why it cannot\n",
        name.c_str());
  }
  std::printf("figure functions that can fail = %zu of %zu imported\n", summary.can_fail, summary.imported);
  std::fflush(stdout);
  return summary.unlisted.empty();
}

int Run(const std::vector<std::string>& arguments) {
  const Options options = ReadOptions(arguments);
  for (const std::string& name : options.scenarios) {
    if (FindScenario(name) == nullptr) throw std::runtime_error("there is no scenario " + name);
  }
  if (!options.child.empty()) return RunChild(options);
  if (options.lists) {
    for (const ScenarioEntry& scenario : Scenarios()) std::printf("%s\n", scenario.name);
    return 0;
  }
  const bool all_listed = TellImports();
  if (options.imports_only) return all_listed ? 0 : 1;
  return RunChildren(options) && all_listed ? 0 : 1;
}

}  // namespace

}  // namespace kesp::faults

int main(int count, char** words) {
  try {
    return kesp::faults::Run({words + 1, words + count});
  } catch (const std::exception& error) {
    std::printf("%s\n", error.what());
    return 2;
  }
}
