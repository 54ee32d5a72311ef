// The lines in which a run says what it measured.
#pragma once

#include <iostream>
#include <string>

namespace kesp::threads {

// "figure rounds, two apartments = 1000", which tools/prove collects.
inline void Figure(const std::string& key, const std::string& value) {
  std::cout << "figure " << key << " = " << value << std::endl;
}
inline void Figure(const std::string& key, long value) {
  Figure(key, std::to_string(value));
}

}  // namespace kesp::threads
