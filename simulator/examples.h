// The examples that the program writes for its users to start from.
#pragma once

#include <string_view>
#include <vector>

namespace kesp::simulator {

struct Example {
  std::string_view kind;
  std::string_view text;
};

// In the order in which they are listed. The texts are those of simulator/examples/.
const std::vector<Example>& Examples();

}  // namespace kesp::simulator
