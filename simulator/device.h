// The seam between devices that are more than a list of answers and what carries their bytes.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/line_rule.h"

namespace kesp::simulator {

// A moment as the time that has passed since any fixed one.
using Moment = std::chrono::milliseconds;

// What a device does at one moment: bytes for its client, and what is worth a line in the log.
struct Deeds {
  std::string bytes;
  std::vector<std::string> events;
};

// A device at a serial line. It has no clock of its own: whoever drives it tells it the time, which never
// goes back.
class Device {
 public:
  virtual ~Device() = default;

  // Takes the bytes that came in at this moment, none when only time has passed, and returns what the device
  // has done by now.
  virtual Deeds Take(std::string_view bytes, Moment now) = 0;

  // When the device will do something by itself, so that Take is called no later than then; nothing: never.
  virtual std::optional<Moment> Due() const { return std::nullopt; }

  // The settings of the line at which it understands its client; nothing: all.
  virtual std::optional<LineRule> Line() const { return std::nullopt; }
};

// Adds what another device has done.
inline void Append(Deeds& deeds, Deeds more) {
  deeds.bytes += more.bytes;
  for (std::string& event : more.events) deeds.events.push_back(std::move(event));
}

// The earlier of two moments, where nothing is never.
inline std::optional<Moment> Earlier(std::optional<Moment> a, std::optional<Moment> b) {
  if (!a || !b) return a ? a : b;
  return *a < *b ? a : b;
}

}  // namespace kesp::simulator
