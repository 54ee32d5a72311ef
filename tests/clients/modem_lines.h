// What the modem lines of the test's COM port did.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace kesp::clients {

// A change of DTR or RTS, with both as they are after it. Times can be compared with each other only.
struct LineChange {
  std::chrono::nanoseconds time{};
  bool dtr = false;
  bool rts = false;
};

// All changes since the test's start, oldest first (tools/with-serial-line). They are there when the call
// that made them returns. Throws std::runtime_error when there is no record.
std::vector<LineChange> LineChanges();

// The same without times: "D" while DTR is up, "R" while RTS is, "DR" both, "-" neither; a space between
// changes.
std::string LineHistory();

}  // namespace kesp::clients
