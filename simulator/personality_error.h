// The error of a personality file that cannot be used.
#pragma once

#include <stdexcept>
#include <string>

namespace kesp::simulator {

// The text names the place in the file, like "/commands/MEAS?/0/gap_ms", and what is wrong there.
class PersonalityError : public std::runtime_error {
 public:
  PersonalityError(const std::string& place, const std::string& problem)
      : std::runtime_error(place + ": " + problem) {}
};

}  // namespace kesp::simulator
