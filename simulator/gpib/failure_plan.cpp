// Which calls are to fail, counted since the bus was loaded.
#include "simulator/gpib/failure_plan.h"

#include <cstddef>
#include <utility>

namespace kesp::simulator::gpib {

FailurePlan::FailurePlan(std::vector<Failure> failures) : failures_(std::move(failures)) {}

std::optional<Report> FailurePlan::Next(CallName call) {
  const std::int32_t number_of_its_kind = ++calls_.at(static_cast<std::size_t>(call));
  const std::int32_t number_of_all = ++all_calls_;
  for (const Failure& failure : failures_) {
    if (failure.call && failure.call != call) continue;
    if (failure.at && *failure.at != (failure.call ? number_of_its_kind : number_of_all)) continue;
    const Outcome outcome{failure.status.value_or(kError | kComplete), failure.error, failure.count};
    return Report{outcome, failure.result.value_or(ResultOf(call, outcome))};
  }
  return std::nullopt;
}

std::int32_t ResultOf(CallName call, const Outcome& outcome) {
  return call == CallName::kDevice ? -1 : outcome.status;
}

}  // namespace kesp::simulator::gpib
