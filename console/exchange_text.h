// Exchanges as lines for the reader, and as comma-separated values.
#pragma once

#include <string>

#include "console/exchange.h"

namespace kesp::console {

// Lines end with a line feed. width: columns of the console, to which a line is cut; 0: as long as it is.
std::string TableHead(int width);
std::string TableLine(const Exchange& exchange, int width);

// As RFC 4180 has it: lines end with CR LF.
std::string CsvHead();
std::string CsvLine(const Exchange& exchange);

}  // namespace kesp::console
