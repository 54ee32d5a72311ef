// Which calls are to fail, counted since the bus was loaded.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "simulator/gpib/bus_description.h"
#include "simulator/gpib/status_word.h"

namespace kesp::simulator::gpib {

// What a call reports, and what its function returns.
struct Report {
  Outcome outcome;
  std::int32_t result = 0;
};

class FailurePlan {
 public:
  explicit FailurePlan(std::vector<Failure> failures);

  // Counts the call; what it reports when it is to fail. Of several failures that fit, the first counts.
  std::optional<Report> Next(CallName call);

 private:
  const std::vector<Failure> failures_;
  std::array<std::int32_t, kCallNames.size()> calls_{};
  std::int32_t all_calls_ = 0;
};

// What a function returns with an outcome: the status word, or -1 for a descriptor that was not opened.
std::int32_t ResultOf(CallName call, const Outcome& outcome);

}  // namespace kesp::simulator::gpib
