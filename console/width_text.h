// Words and commands that differ between 64 and 32 bit.
#pragma once

#include <string>
#include <vector>

#include "console/registration_entry.h"
#include "console/system_facts.h"

namespace kesp::console {

// "64-bit"
std::string WidthText(int bits);

// What registers a library: the command, behind "as administrator: " where only an administrator may run it.
// For all users no library in the folder of one user is registered, which the others cannot read. No library:
// the setup program does it.
std::string RegisterRemedy(const SystemFacts& system, int bits, Hive hive, const std::string& library);

// The folder of that name beside another one, each with "\" behind: "C:\kesp\win32\" beside "C:\kesp\win64\".
// Empty where there is no folder around it: "C:\".
std::string FolderBeside(const std::string& folder, const std::string& name);

// Whether the path lies in the folder, which has no "\" behind.
bool IsBelow(const std::string& path, const std::string& folder);

// Names in a row, with that between them.
std::string Joined(const std::vector<std::string>& names, const std::string& between = ", ");

// Windows does not tell upper from lower case in paths.
bool IsSamePath(const std::string& one, const std::string& other);

}  // namespace kesp::console
