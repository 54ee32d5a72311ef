// Something that a client does with the library.
#pragma once

#include <memory>
#include <span>
#include <string>

#include "tests/faults/verdict.h"

namespace kesp::faults {

// Made, run and destroyed while faults may happen; only WorkAgain is undisturbed.
class Scenario {
 public:
  virtual ~Scenario() = default;

  // Makes objects and uses them; what is wrong with a result goes to the verdict. Stops where a step fails.
  virtual void Run(Verdict& verdict) = 0;
  // Uses the same objects, which must work now. Objects that could not be made are left out.
  virtual void WorkAgain(Verdict& verdict) = 0;
};

struct ScenarioEntry {
  const char* name;
  const char* what;
  std::unique_ptr<Scenario> (*make)();
  // Of a scenario that takes long: no more calls of each function than that.
  unsigned most = 1000;
  // Each case has a process of its own, in which the library has done nothing before; the fault may happen
  // while it is loaded, too. What stays in memory is not looked at.
  bool is_cold = false;
};

std::span<const ScenarioEntry> Scenarios();
const ScenarioEntry* FindScenario(const std::string& name);

}  // namespace kesp::faults
