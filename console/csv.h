// Comma-separated values.
#pragma once

#include <string>
#include <vector>

namespace kesp::console {

// A line with its end. A field with a comma, a quotation mark or a line end stands in quotation marks.
std::string CsvOf(const std::vector<std::string>& fields);

}  // namespace kesp::console
