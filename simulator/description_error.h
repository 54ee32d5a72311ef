// The error of a description that cannot be used.
#pragma once

#include <stdexcept>
#include <string>

namespace kesp::simulator {

// The text has a line for each mistake, such as
// "meter.json:12: /commands/MEAS?/0/gap_ms: must be a whole number from 0 to 3600000".
class DescriptionError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace kesp::simulator
