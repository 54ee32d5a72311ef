// The cases of one scenario, one after the other.
#pragma once

#include <optional>

#include "tests/faults/injector.h"
#include "tests/faults/levels.h"
#include "tests/faults/options.h"
#include "tests/faults/progress.h"
#include "tests/faults/scenario.h"

namespace kesp::faults {

// Runs in a child process, since a case may crash or hang it.
class Sweep {
 public:
  Sweep(const ScenarioEntry& scenario, const Options& options, Progress& progress)
      : scenario_(scenario), options_(options), progress_(progress) {}

  // False when the scenario fails without any fault.
  bool Run();

  // One case, or without one the counting, in a process in which the library is not loaded yet.
  bool RunCold();

 private:
  struct Result {
    Verdict verdict;
    bool was_injected = false;
    DWORD duration_ms = 0;
  };

  bool WarmUp();
  void CountCalls(const std::vector<unsigned>& calls);
  // Those of a function's calls that are tried.
  std::vector<unsigned> CallsOf(unsigned calls) const;
  // The cases of a function, in their order.
  std::vector<Fault> CasesOf(std::size_t function, unsigned calls) const;
  // The first case of all behind the one that was last.
  std::optional<Fault> NextCase() const;
  void Announce(const Fault& fault);
  void CountFault(const Fault& fault, const Result& result);
  // Tells what is wrong with a result.
  void Judge(const Fault& fault, const Result& result);
  bool IsWanted(const Fault& fault) const;
  void RunCase(const Fault& fault);
  Result Once(const Fault* fault) const;
  // What stays behind each time that this fault happens; empty for nothing.
  std::string LeakOf(const Fault& fault);
  // Tells who asked for the blocks that stay.
  void TellBlocks(const Fault& fault) const;
  void Tell(const char* kind, const Fault& fault, const std::string& what) const;

  const ScenarioEntry& scenario_;
  const Options& options_;
  Progress& progress_;
  Levels before_;
};

// Numbers of calls to try, of that many: all up to 50, then ever fewer, and the last.
std::vector<unsigned> CallsToTry(unsigned calls, unsigned most);

}  // namespace kesp::faults
