// Starting children, watching them, and adding up.
#include "tests/faults/children.h"

#include <cstdio>
#include <stdexcept>

#include "tests/faults/excuses.h"
#include "tests/faults/progress.h"
#include "tests/faults/replay.h"
#include "tests/faults/scenario.h"

namespace kesp::faults {

namespace {

// No limit of a call in any scenario is near that long.
constexpr DWORD kLongestCaseMs = 60000;
constexpr DWORD kTellEachMs = 5000;

struct Totals {
  LONG faults = 0;
  LONG allocations = 0;
  LONG crashes = 0;
  LONG hangs = 0;
  LONG leaks = 0;
  LONG idle_objects = 0;
  LONG wrong_results = 0;
  LONG excused_leaks = 0;
  LONG excused_crashes = 0;
  LONG failed_scenarios = 0;

  bool AreClean() const {
    return crashes + hangs + leaks + idle_objects + wrong_results + failed_scenarios == 0 && faults > 0;
  }
};

HANDLE Start(const std::string& arguments) {
  char path[MAX_PATH] = "";
  GetModuleFileNameA(nullptr, path, sizeof path);
  std::string line = "\"" + std::string(path) + "\"" + arguments;
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  if (CreateProcessA(path, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process) ==
      0) {
    throw std::runtime_error("a child cannot be started: " + std::to_string(GetLastError()));
  }
  CloseHandle(process.hThread);
  return process.hProcess;
}

// Waits for the child, tells how far it is, and ends it when one case takes too long. Returns its exit code.
DWORD Watch(HANDLE child, const char* scenario, const Progress& progress) {
  LONG beat = progress.beat;
  DWORD since = GetTickCount();
  DWORD told = since;
  constexpr DWORD kPollMs = 100;
  while (WaitForSingleObject(child, kPollMs) == WAIT_TIMEOUT) {
    const DWORD now = GetTickCount();
    if (progress.beat != beat) {
      beat = progress.beat;
      since = now;
    }
    if (now - told > kTellEachMs) {
      told = now;
      std::printf("%s: %ld faults, now %s %ld\n", scenario, progress.faults, progress.function, progress.nth);
      std::fflush(stdout);
    }
    if (now - since > kLongestCaseMs) {
      TerminateProcess(child, kHung);
      WaitForSingleObject(child, INFINITE);
    }
  }
  DWORD code = 0;
  GetExitCodeProcess(child, &code);
  return code;
}

// Tells how the child ended, and gives the figure that this belongs to.
LONG& CountOfEnd(const char* scenario, DWORD code, const Progress& progress, Totals& totals) {
  const char* excuse = ExcuseFor(scenario, progress.function, kEndOfProcess);
  std::printf("%s, %s %s %ld way %ld: the child ended with %lu%s%s\n", code == kHung ? "hang" : "crash",
              scenario, progress.function, progress.nth, progress.way, code,
              excuse == nullptr ? "" : "; excused: ", excuse == nullptr ? "" : excuse);
  std::fflush(stdout);
  if (excuse != nullptr) return totals.excused_crashes;
  return code == kHung ? totals.hangs : totals.crashes;
}

// A case that does not come up any more protects nothing.
void TellMissedCases(const char* scenario, const Progress& progress, Totals& totals) {
  for (const std::string& missed : MissedCases(scenario, static_cast<unsigned>(progress.replayed))) {
    std::printf("%s: %s is to be replayed, and did not happen\n", scenario, missed.c_str());
    ++totals.failed_scenarios;
  }
}

void SweepScenario(Options options, const char* scenario, Totals& totals) {
  options.child = "kesp-faults-" + std::to_string(GetCurrentProcessId()) + "-" + scenario;
  const SharedProgress progress(std::wstring(options.child.begin(), options.child.end()));
  const DWORD start = GetTickCount();
  while (true) {
    const LONG beat = progress->beat;
    const HANDLE child = Start(ChildArguments(options, scenario));
    const DWORD code = Watch(child, scenario, *progress);
    CloseHandle(child);
    if (progress->is_done != 0) break;
    const bool is_cold = FindScenario(scenario)->is_cold;
    if (is_cold && code == 0) {
      // The counting, or one case.
      const bool counted = options.after_index < 0;
      options.after_index = counted ? 0 : progress->index;
      options.after_nth = counted ? 0 : progress->nth;
      options.after_way = counted ? 0 : progress->way;
      continue;
    }
    if (code == kFailsWithoutFault || progress->beat == beat) {
      std::printf("%s: the child ended with %lu before its first case\n", scenario, code);
      ++totals.failed_scenarios;
      break;
    }
    ++CountOfEnd(scenario, code, *progress, totals);
    progress->CountFault(scenario);
    options.after_index = progress->index;
    options.after_nth = progress->nth;
    options.after_way = progress->way;
  }
  std::printf("figure cases, %s = %ld\n", scenario, progress->faults);
  std::printf("figure calls tried, %s = %ld of %ld\n", scenario, progress->calls_tried, progress->calls_seen);
  std::printf("%s: %ld s, slowest %ld ms (%s)\n", scenario, (GetTickCount() - start) / 1000,
              progress->slowest_ms, progress->slowest);
  if (options.replays) TellMissedCases(scenario, *progress, totals);
  std::fflush(stdout);
  totals.faults += progress->faults;
  totals.allocations += progress->allocations;
  totals.leaks += progress->leaks;
  totals.idle_objects += progress->idle_objects;
  totals.wrong_results += progress->wrong_results;
  totals.excused_leaks += progress->excused_leaks;
}

}  // namespace

bool RunChildren(const Options& options) {
  Totals totals;
  std::vector<std::string> names = options.scenarios;
  if (names.empty() && options.replays) names = ReplayedScenarios();
  if (names.empty()) {
    for (const ScenarioEntry& scenario : Scenarios()) names.emplace_back(scenario.name);
  }
  for (const std::string& name : names) SweepScenario(options, name.c_str(), totals);
  std::printf("total faults injected = %ld\n", totals.faults);
  std::printf("total allocations failed = %ld\n", totals.allocations);
  std::printf("total crashes = %ld\n", totals.crashes);
  std::printf("total hangs = %ld\n", totals.hangs);
  std::printf("total leaks = %ld\n", totals.leaks);
  std::printf("total objects that did not work again = %ld\n", totals.idle_objects);
  std::printf("total wrong results = %ld\n", totals.wrong_results);
  std::printf("total leaks excused = %ld\n", totals.excused_leaks);
  std::printf("total crashes excused = %ld\n", totals.excused_crashes);
  std::fflush(stdout);
  return totals.AreClean();
}

}  // namespace kesp::faults
