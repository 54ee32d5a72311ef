// The log of what the simulated instrument does.
#include "simulator/event_log.h"

#include <chrono>
#include <ctime>
#include <iomanip>
#include <sstream>
#include <utility>

#include "simulator/platform.h"

namespace kesp::simulator {

EventLog::EventLog(std::vector<std::ostream*> sinks, Stamp stamp)
    : sinks_(std::move(sinks)), stamp_(std::move(stamp)) {}

void EventLog::Line(unsigned connection, std::string_view text) {
  if (!on()) return;
  std::ostringstream line;
  line << stamp_() << ' ';
  if (connection != 0) line << '#' << connection << ' ';
  line << text << '\n';
  for (std::ostream* sink : sinks_) *sink << line.str() << std::flush;
}

std::string TimeOfDay() {
  const auto now = std::chrono::system_clock::now();
  const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  const auto milliseconds =
      std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
  const std::tm local = LocalTime(seconds);
  std::ostringstream text;
  text << std::put_time(&local, "%H:%M:%S") << '.' << std::setw(3) << std::setfill('0') << milliseconds;
  return text.str();
}

}  // namespace kesp::simulator
