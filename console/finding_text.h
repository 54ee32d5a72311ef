// Findings as a page for people, and as JSON for programs.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "console/finding.h"

namespace kesp::console {

// A line for each finding, one below it for its remedy, and the sum.
std::string PageOf(const Findings& findings);

std::string JsonOf(const Findings& findings);

// What JsonOf has written; nothing for another text.
std::optional<Findings> FindingsOf(std::string_view json);

}  // namespace kesp::console
