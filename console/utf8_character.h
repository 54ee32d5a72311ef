// The characters of a text in UTF-8.
#pragma once

#include <cstddef>
#include <string_view>

namespace kesp::console {

struct Character {
  char32_t code = 0;
  std::size_t length = 0;  // in bytes; 0: not UTF-8
};

// With which the text begins, which is not empty.
Character CharacterAt(std::string_view text);

}  // namespace kesp::console
