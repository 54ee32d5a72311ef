// What the program does between its ready line and its end: serve clients over TCP, or one serial line.
#pragma once

#include <memory>
#include <string>

#include "simulator/device.h"
#include "simulator/event_log.h"
#include "simulator/instrument.h"
#include "simulator/options.h"

namespace kesp::simulator {

// Prints "listening on ADDRESS:PORT", and then "discovery on ADDRESS:PORT" if asked to answer discovery, and
// serves until it is asked to end, or until the only client has left. Throws CannotError.
void ServeTcp(const Options& options, const std::shared_ptr<Instrument>& instrument, EventLog& log);

// Opens the serial line of that name (OpenSerialLine), prints "serving NAME" and serves until it is asked to
// end. A talk that pulls the adapter ends the service only, for the program's caller to end the
// program. Throws CannotError likewise when the line cannot be had.
void ServeSerial(const std::string& name, Device& device, EventLog& log);

}  // namespace kesp::simulator
