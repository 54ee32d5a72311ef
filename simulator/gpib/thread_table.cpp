// The threads that use the driver, and the cells to which their outcomes go.
#include "simulator/gpib/thread_table.h"

#include <algorithm>
#include <cstddef>

namespace kesp::simulator::gpib {

ThreadTable::ThreadTable(std::vector<std::int32_t> scripted_results)
    : scripted_results_(scripted_results.begin(), scripted_results.end()) {}

ThreadTable::Thread& ThreadTable::Find(ThreadId thread) {
  const auto [place, is_new] = threads_.try_emplace(thread);
  if (is_new) place->second.ordinal = ++last_ordinal_;
  return place->second;
}

unsigned ThreadTable::OrdinalOf(ThreadId thread) {
  return Find(thread).ordinal;
}

std::int32_t ThreadTable::Register(ThreadId thread, const Cells& cells) {
  Thread& found = Find(thread);
  if (!scripted_results_.empty()) {
    const std::int32_t result = scripted_results_.front();
    scripted_results_.pop_front();
    if (result == kRegistered) found.cells = cells;
    return result;
  }
  if (std::find(cells.begin(), cells.end(), nullptr) != cells.end()) return kNullCell;
  if (found.cells && *found.cells != cells) return kHasOtherCells;
  found.cells = cells;
  return kRegistered;
}

bool ThreadTable::Unregister(ThreadId thread) {
  Thread& found = Find(thread);
  const bool was_registered = found.cells.has_value();
  found.cells.reset();
  return was_registered;
}

std::optional<unsigned> ThreadTable::End(ThreadId thread) {
  const auto found = threads_.find(thread);
  if (found == threads_.end()) return std::nullopt;
  const Thread ended = found->second;
  threads_.erase(found);
  if (!ended.cells) return std::nullopt;
  return ended.ordinal;
}

void ThreadTable::ForgetRegistrations() {
  for (auto& [thread, found] : threads_) found.cells.reset();
}

void ThreadTable::Report(ThreadId thread, const Outcome& outcome) {
  const std::optional<Cells>& cells = Find(thread).cells;
  if (!cells) return;
  const std::array<std::int32_t, 4> values{outcome.status, outcome.error, outcome.count, outcome.count};
  for (std::size_t i = 0; i < values.size(); ++i) {
    // A script may have registered cells that are not there.
    if ((*cells)[i] != nullptr) *(*cells)[i] = values[i];
  }
}

}  // namespace kesp::simulator::gpib
