// The cases in which something was once broken; ./test runs them again.
#pragma once

#include <string>
#include <vector>

namespace kesp::faults {

// Names of the scenarios that have some, each once.
std::vector<std::string> ReplayedScenarios();

// A bit for each of the cases that this call belongs to.
unsigned ReplayedBits(const std::string& scenario, const std::string& function, unsigned nth);

// The scenario's cases whose bits are missing, but for functions that the library does not import.
std::vector<std::string> MissedCases(const std::string& scenario, unsigned replayed_bits);

}  // namespace kesp::faults
