// Random texts.
#pragma once

#include "tests/clients/automation.h"
#include "tests/variants/random_source.h"

namespace kesp::variants {

// One of all kinds: none, empty, numbers, commands, with NULs, with an odd length in bytes, with halves of
// characters, very long ones. No line ends: the device would answer twice.
BSTR RandomText(RandomSource& random);

// A name for GetIDsOfNames, one of `known` in whatever case or one that nobody has.
std::wstring RandomName(RandomSource& random, const std::vector<std::wstring>& known);

}  // namespace kesp::variants
