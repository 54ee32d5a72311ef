// The key of an object: a short text that tells one instance from every other.
#pragma once

#include <string>

#include "support/guid_source.h"

namespace kesp {

// 32 upper-case hexadecimal digits without braces and separators: the three leading fields as numbers (8, 4
// and 4 digits), then the 8 remaining bytes in storage order. Empty when the source could not make a GUID.
std::wstring NewGuidText(GuidSource& source);

// The first 10 characters of a new GUID text followed by "K" (11 characters; "K" alone when there is no
// GUID).
std::wstring NewObjectKey(GuidSource& source);

}  // namespace kesp
