// The description of the bus in the file beside the DLL.
#pragma once

#include <string>

#include "simulator/gpib/bus_description.h"

namespace kesp::simulator::gpib {

// The bus of the file, given the path of the DLL without its extension: of <path>.json, or the built-in bus
// when there is no such file. Of a file that cannot be used it is the bus on which every call fails; the
// reason goes to standard error and to <path>.error.txt, which is removed when all is well.
BusDescription BusBeside(const std::wstring& path);

}  // namespace kesp::simulator::gpib
