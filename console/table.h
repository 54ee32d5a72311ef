// A table for people: columns that stand below one another.
#pragma once

#include <string>
#include <vector>

namespace kesp::console {

using TableRow = std::vector<std::string>;

// The rows as lines, two blanks between the columns, none at the end of a line. Cells are in UTF-8; each
// character counts as one column.
std::string TableOf(const std::vector<TableRow>& rows);

}  // namespace kesp::console
