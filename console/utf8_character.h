// The characters of a text in UTF-8.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kesp::console {

struct Character {
  char32_t code = 0;
  std::size_t length = 0;  // in bytes; 0: not UTF-8
};

// Whether a character begins with that byte.
bool BeginsCharacter(char byte);

// How many there are; each takes one column of a console.
std::size_t CharactersIn(std::string_view text);

// With which the text begins, which is not empty.
Character CharacterAt(std::string_view text);

// code: below U+10000.
void AppendUtf8(char32_t code, std::string& text);

}  // namespace kesp::console
