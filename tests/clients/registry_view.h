// The parts of the registry that a registration may touch.
#pragma once

#include <map>
#include <set>
#include <string>

#include "tests/clients/automation.h"

namespace kesp::clients {

// "HKLM" for the machine, "HKCU" for the present user.
enum class Hive { kMachine, kUser };

// The names of the keys in which the classes of all libraries lie, one level deep: programs, classes,
// interfaces and type libraries.
std::set<std::wstring> RegisteredNames(Hive hive);

// Everything below Software\Classes\<key>: each value as "key\name" (without a name for the default value)
// and its text. Empty where the key does not exist.
std::map<std::wstring, std::wstring> ValuesBelow(Hive hive, const std::wstring& key);

std::wstring GuidText(REFGUID guid);

}  // namespace kesp::clients
