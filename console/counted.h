// Numbers with their nouns.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kesp::console {

// "17 bytes", "1 byte"
inline std::string Counted(std::int64_t number, std::string_view noun) {
  return std::to_string(number) + ' ' + std::string(noun) + (number == 1 ? "" : "s");
}

}  // namespace kesp::console
