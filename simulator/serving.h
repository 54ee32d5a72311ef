// What the program does between its ready line and its end: serve clients over TCP, or one serial line.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "simulator/device.h"
#include "simulator/event_log.h"
#include "simulator/instrument.h"
#include "simulator/network_description.h"
#include "simulator/options.h"

namespace kesp::simulator {

// An instrument and where it listens.
struct Station {
  TcpAddress address;  // host: any IP address; port 0: a free one is picked
  std::shared_ptr<Instrument> instrument;
};

// Prints "listening on ADDRESS:PORT", with all addresses separated by ", ", and then "discovery on
// ADDRESS:PORT" if asked to answer discovery, and serves until it is asked to end, or until the only client
// has left. Throws CannotError.
void ServeTcp(const Options& options, const std::vector<Station>& stations, EventLog& log);

// Opens the serial line of that name (OpenSerialLine), prints "serving NAME" and serves until it is asked to
// end. A talk that pulls the adapter ends the service only, for the program's caller to end the
// program. Throws CannotError likewise when the line cannot be had.
void ServeSerial(const std::string& name, Device& device, EventLog& log);

}  // namespace kesp::simulator
