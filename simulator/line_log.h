// The log of what comes in over a serial line.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/carrier.h"
#include "simulator/event_log.h"

namespace kesp::simulator {

// Logs every byte that comes in, whole and in order, and the settings of the line when they have changed. Of
// carriers without settings it logs nothing. Belongs to a conversation, like the carrier.
class LineLog {
 public:
  LineLog(Carrier& carrier, EventLog& log, unsigned number);

  // Takes bytes that came in; they are in the log at the next Write at the latest.
  void Add(std::string_view bytes);

  // Logs what was added since the last call, under the settings when they have changed.
  void Write();

  // Takes what the carrier still holds and logs it.
  void Finish();

  // How long to wait for more bytes before what was added is written: a moment, or for ever when nothing was.
  std::chrono::milliseconds patience() const;

 private:
  Carrier& carrier_;
  EventLog& log_;
  const unsigned number_;
  // Those at which bytes came last, and whether the log does not have them yet.
  std::optional<LineSettings> settings_;
  bool news_ = false;
  std::string received_;
};

}  // namespace kesp::simulator
