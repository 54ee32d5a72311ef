// The serial bit rates: which indices name one, and their texts.
#pragma once

#include <string>

#include "support/enumerations.h"

namespace kesp {

// Whether the value is one of the enumeration's own, brNone included.
bool IsBaudRate(EKespBaudRate3 rate);

// The rate in bit/s as decimal text, for example "9600"; "<unknown>" for brNone and for every value that
// names no rate.
std::wstring BaudRateName(EKespBaudRate3 rate);

}  // namespace kesp
