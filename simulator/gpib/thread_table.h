// The threads that use the driver, and the cells to which their outcomes go.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <vector>

#include "simulator/gpib/status_word.h"

namespace kesp::simulator::gpib {

using ThreadId = std::uint32_t;

// Where a thread wants its outcomes: status, error, count and long count. They belong to the caller and stay
// until the thread is unregistered or has ended.
using Cells = std::array<std::int32_t*, 4>;

class ThreadTable {
 public:
  static constexpr std::int32_t kRegistered = 0;
  static constexpr std::int32_t kHasOtherCells = 1;
  static constexpr std::int32_t kNullCell = 3;

  // The first registrations have these results, one after the other; of them, only 0 registers.
  explicit ThreadTable(std::vector<std::int32_t> scripted_results);

  // Threads are numbered from 1 as they come.
  unsigned OrdinalOf(ThreadId thread);

  // One of the results above. Cells that are registered already are not changed.
  std::int32_t Register(ThreadId thread, const Cells& cells);
  // Whether the thread was registered.
  bool Unregister(ThreadId thread);
  // Forgets the thread, so that another one with the same identifier is a new one. Returns its ordinal when
  // it was registered.
  std::optional<unsigned> End(ThreadId thread);
  void ForgetRegistrations();

  // Writes the outcome to the thread's cells, if it has any.
  void Report(ThreadId thread, const Outcome& outcome);

 private:
  struct Thread {
    unsigned ordinal;
    std::optional<Cells> cells;
  };
  Thread& Find(ThreadId thread);

  std::deque<std::int32_t> scripted_results_;
  std::map<ThreadId, Thread> threads_;
  unsigned last_ordinal_ = 0;
};

}  // namespace kesp::simulator::gpib
