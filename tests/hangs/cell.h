// One cell of the matrix: a blocking member in one way to hang, and what a run of it shows.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kesp::hangs {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;

class Trial;

struct Cell {
  // "TCP", "serial", "GPIB" or "discovery".
  std::string transport = {};
  // "CKespTCP.ReadLine", and behind a comma what else matters, such as a setting.
  std::string member = {};
  std::string way = {};
  // What the call comes to, one of these (outcome.h).
  std::vector<std::string> specified = {};
  // The longest that the call may take by the reference: the upper end, where a wait is in steps of seconds.
  Milliseconds limit{0};
  // The limit counts from the last of certain events, such as arrivals, where a wait is for what comes after
  // them.
  bool counts_from_event = false;
  // The reference's words where the wait has no limit by design. The trial puts an end to it, from which the
  // limit counts.
  std::string without_limit = {};
  std::function<void(Trial&)> play = {};

  std::string Name() const { return transport + ": " + member + " (" + way + ")"; }
};

using Cells = std::vector<Cell>;

// The cells of each transport.
Cells TcpCells();
Cells DiscoveryCells();
Cells SerialCells();
Cells GpibCells();

}  // namespace kesp::hangs
