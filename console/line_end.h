// Replies without their line ends: those of the GPIB come with them.
#pragma once

#include <string>

namespace kesp::console {

inline std::string WithoutLineEnd(std::string text) {
  text.erase(text.find_last_not_of("\r\n") + 1);
  return text;
}

}  // namespace kesp::console
