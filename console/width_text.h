// Words and commands that differ between 64 and 32 bit.
#pragma once

#include <string>

#include "console/registration_entry.h"
#include "console/system_facts.h"

namespace kesp::console {

// "64-bit"
std::string WidthText(int bits);

// The command that registers a library, and who may run it.
std::string RegisterCommand(const SystemFacts& system, int bits, Hive hive, const std::string& library);

// Windows does not tell upper from lower case in paths.
bool IsSamePath(const std::string& one, const std::string& other);

}  // namespace kesp::console
