// Actions as bytes at their times.
#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/action.h"

namespace kesp::simulator {

// Bytes to send, the pause before them, and whether the reply is whole with them.
struct Part {
  std::chrono::milliseconds pause;
  std::string bytes;
  bool is_whole = true;
};

// What a device sends that has no line of its own, for actions without Flood, HoldForNext and Ending.
std::vector<Part> PartsOf(const ActionList& actions, std::string_view command);

}  // namespace kesp::simulator
