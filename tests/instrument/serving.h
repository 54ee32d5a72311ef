// What the program does between its ready line and its end: serve clients over TCP, or one serial line.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "tests/instrument/carrier.h"
#include "tests/instrument/event_log.h"
#include "tests/instrument/instrument.h"
#include "tests/instrument/options.h"
#include "tests/instrument/talk.h"

namespace kesp::simulator {

// Makes the conversation on a carrier, which outlives it.
using TalkMaker = std::function<std::unique_ptr<Talk>(Carrier&)>;

// Prints "listening on ADDRESS:PORT", and then "discovery on ADDRESS:PORT" if asked to answer discovery, and
// serves until SIGINT or SIGTERM, or until the only client has left. Throws std::system_error, whose text
// begins with what could not be done ("listen on 127.0.0.1 port 10001").
void ServeTcp(const Options& options, Instrument& instrument, EventLog& log);

// Makes a serial line under that path, prints "serving PATH" and serves until SIGINT or SIGTERM; the path is
// gone then. A conversation that pulls the adapter ends the service only, for the program's caller to end the
// program. Throws std::system_error likewise when the line cannot be made.
void ServeSerial(const std::string& path, const TalkMaker& make_talk);

}  // namespace kesp::simulator
