// The seam between what is simulated and what carries its bytes.
#pragma once

#include <chrono>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "simulator/line_rule.h"
#include "simulator/schedule.h"

namespace kesp::simulator {

// A moment as the time that has passed since any fixed one.
using Moment = std::chrono::milliseconds;

// What a device does at one moment: something that is worth a line in the log, a step of a reply, or both, in
// this order. The pause of the step has passed.
struct Deed {
  std::string event;
  Step step;
};

inline Deed Saying(std::string bytes) {
  Deed deed;
  deed.step.bytes = std::move(bytes);
  return deed;
}

// A device at the line of one client. It has no clock of its own: whoever drives it tells it the time, which
// never goes back.
class Device {
 public:
  virtual ~Device() = default;

  // Takes bytes that came in at this moment.
  virtual void Take(std::string_view bytes, Moment now) = 0;

  // What it does next at this moment; to be called until there is nothing more.
  virtual std::optional<Deed> Next(Moment now) = 0;

  // After that: when it will do something by itself; nothing: never.
  virtual std::optional<Moment> Due() const { return std::nullopt; }

  // After that: whether it listens to its line. If not, something is due, and until then what comes stays on
  // the line.
  virtual bool Listens() const { return true; }

  // The settings of a serial line at which it understands its client; nothing: all.
  virtual std::optional<LineRule> Line() const { return std::nullopt; }
};

// Takes the first one out of the queue, if there is one.
inline std::optional<Deed> TakeFirst(std::deque<Deed>& deeds) {
  if (deeds.empty()) return std::nullopt;
  Deed first = std::move(deeds.front());
  deeds.pop_front();
  return first;
}

// The earlier of two moments, where nothing is never.
inline std::optional<Moment> Earlier(std::optional<Moment> a, std::optional<Moment> b) {
  if (!a || !b) return a ? a : b;
  return *a < *b ? a : b;
}

}  // namespace kesp::simulator
