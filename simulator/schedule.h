// Actions as a schedule: which bytes go out, and when. Carriers only carry it out.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/action.h"

namespace kesp::simulator {

struct Step {
  std::chrono::milliseconds pause{0};  // before it
  // One piece, sent so many times; or, with a flood, over and over for that time.
  std::string bytes;
  std::size_t times = 1;
  std::optional<std::chrono::milliseconds> flood;
  // On a bus.
  std::optional<std::uint8_t> status_byte;
  // Ends the line, after the bytes.
  std::optional<Ending> ending;
  // Whether a reply is whole with these bytes, which a bus marks by END.
  bool is_whole = true;
};

// The steps of a list of actions, up to the first that ends the line. Pieces are never without bytes; other
// steps have none, and a pause after the last thing is a step of its own. `command` is what "echo" sends.
// `held` has the bytes that earlier lists held back, which go with the first piece; a list that holds back
// adds to them and has no step.
std::vector<Step> StepsOf(const ActionList& actions, std::string_view command, std::string& held);

// The same for devices without a line of their own, whose lists hold nothing back.
std::vector<Step> StepsOf(const ActionList& actions, std::string_view command);

}  // namespace kesp::simulator
