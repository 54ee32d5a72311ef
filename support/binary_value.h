// The value that a binary read hands back: nothing yet, text, or bytes.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace kesp {

using Bytes = std::vector<std::uint8_t>;

// monostate: the read has not stored anything, the caller's value stays as it was.
using BinaryValue = std::variant<std::monostate, std::wstring, Bytes>;

}  // namespace kesp
