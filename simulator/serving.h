// What the program does between its ready line and its end: serve clients over TCP, or one serial line.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "simulator/carrier.h"
#include "simulator/event_log.h"
#include "simulator/instrument.h"
#include "simulator/options.h"
#include "simulator/talk.h"

namespace kesp::simulator {

// Makes the conversation on a carrier, which outlives it.
using TalkMaker = std::function<std::unique_ptr<Talk>(Carrier&)>;

// Prints "listening on ADDRESS:PORT", and then "discovery on ADDRESS:PORT" if asked to answer discovery, and
// serves until it is asked to end, or until the only client has left. Throws CannotError.
void ServeTcp(const Options& options, Instrument& instrument, EventLog& log);

// Opens the serial line of that name (OpenSerialLine), prints "serving NAME" and serves until it is asked to
// end. A conversation that pulls the adapter ends the service only, for the program's caller to end the
// program. Throws CannotError likewise when the line cannot be had.
void ServeSerial(const std::string& name, const std::optional<LineRule>& line, const TalkMaker& make_talk);

}  // namespace kesp::simulator
