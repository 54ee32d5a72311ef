// The whole table of functions that can fail.
#include "tests/faults/functions.h"

namespace kesp::faults {

std::vector<Import> FailingFunctions() {
  std::vector<Import> functions;
  AddMemoryFunctions(functions);
  AddAutomationFunctions(functions);
  AddNetworkFunctions(functions);
  AddSystemFunctions(functions);
  AddWindowFunctions(functions);
  return functions;
}

}  // namespace kesp::faults
