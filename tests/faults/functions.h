// The functions that the library imports: which of them can fail, and how, and which cannot, and why.
#pragma once

#include <span>
#include <vector>

#include "tests/faults/injector.h"

namespace kesp::faults {

// Those that can fail, by where they come from.
void AddSystemFunctions(std::vector<Import>& functions);      // files, ports, registry, modules
void AddWindowFunctions(std::vector<Import>& functions);      // windows, drawing
void AddNetworkFunctions(std::vector<Import>& functions);     // Winsock
void AddAutomationFunctions(std::vector<Import>& functions);  // COM and automation
void AddMemoryFunctions(std::vector<Import>& functions);      // the C runtime's memory

std::vector<Import> FailingFunctions();

// An import that is not made to fail.
struct SteadyFunction {
  const char* name;
  const char* reason;
};

std::span<const SteadyFunction> SteadyFunctions();

}  // namespace kesp::faults
