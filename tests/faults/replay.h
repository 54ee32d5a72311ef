// The cases in which something was once broken; ./test runs them again.
#pragma once

#include <string>
#include <vector>

namespace kesp::faults {

// Names of the scenarios that have some, each once.
std::vector<std::string> ReplayedScenarios();

bool IsReplayed(const std::string& scenario, const std::string& function, unsigned nth);

}  // namespace kesp::faults
