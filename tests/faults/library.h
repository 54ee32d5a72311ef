// The registered library in this process, with its imports led through the hooks.
#pragma once

#include <string>
#include <vector>

namespace kesp::faults {

// Loads it, for good, and redirects every import that can fail. Throws std::runtime_error when it is not
// there.
void LoadLibraryWithHooks();

// Has the imports redirected as soon as the library is loaded, before its first instruction.
void RedirectWhenLoaded();

struct ImportSummary {
  std::size_t imported = 0;
  std::size_t can_fail = 0;
  // In neither list, or in both.
  std::vector<std::string> unlisted;
};

// After LoadLibraryWithHooks.
ImportSummary SummaryOfImports();

}  // namespace kesp::faults
