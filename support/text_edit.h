// Small text operations that more than one transport needs.
#pragma once

#include <string>
#include <string_view>

namespace kesp {

// text without leading and trailing blanks (character 32 only).
std::wstring Trim(std::wstring_view text);
std::string Trim(std::string_view text);

// Replaces every carriage return and every line feed by a blank, then trims: "A\rB\n" gives "A B".
std::wstring StripLineEnds(std::wstring text);

}  // namespace kesp
