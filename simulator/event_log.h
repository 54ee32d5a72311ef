// The log of what the simulated instrument does.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace kesp::simulator {

// Writes each event as one line "<time> #<connection> <text>" to every sink and flushes it, so that the log
// is complete at any moment. Without a sink it does nothing. Used by one thread.
class EventLog {
 public:
  using Stamp = std::function<std::string()>;

  // The sinks must outlive the log. stamp gives the time of a line.
  EventLog(std::vector<std::ostream*> sinks, Stamp stamp);

  bool on() const { return !sinks_.empty(); }

  // connection counts from 1; 0 stands for the instrument as a whole and is not written.
  void Line(unsigned connection, std::string_view text);

 private:
  std::vector<std::ostream*> sinks_;
  Stamp stamp_;
};

// The local time of day with milliseconds, like "14:03:59.120".
std::string TimeOfDay();

}  // namespace kesp::simulator
