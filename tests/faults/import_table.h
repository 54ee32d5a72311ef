// The import table of a module of this process.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace kesp::faults {

struct ImportSlot {
  std::string name;  // "#7" for an import by number
  void** slot = nullptr;
};

std::vector<ImportSlot> ImportsOf(HMODULE module);

// Has the module call another function from now on; returns the one that it called so far.
void* Redirect(const ImportSlot& import, void* function);

}  // namespace kesp::faults
