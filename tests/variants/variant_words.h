// A VARIANT in words, in full, so that two can be compared.
#pragma once

#include <string>

#include "tests/clients/automation.h"

namespace kesp::variants {

class Side;

// Its type and everything in it: each bit of numbers, each byte of texts, bounds and elements of arrays, what
// a reference refers to; of objects the name that `side` has for them.
std::wstring InWords(const VARIANT& value, const Side& side);

// The same for a text, without its length in bytes when that is even.
std::wstring InWords(BSTR text, const Side& side);

}  // namespace kesp::variants
