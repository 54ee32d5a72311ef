// A COM port as the carrier of a talk.
#pragma once

#include <asio/io_context.hpp>
#include <asio/serial_port.hpp>
#include <optional>
#include <string>

#include "simulator/line_rule.h"
#include "simulator/stream_carrier.h"

namespace kesp::simulator {

// One end of a null modem, of two adapters that are joined, or of a pair of ports that a driver joins; the
// client has the other end. The client's coming and going is not seen.
class ComPortCarrier : public StreamCarrier<asio::serial_port> {
 public:
  // Opens the port, sets it as the rule says, and raises DTR and RTS. Throws std::system_error.
  ComPortCarrier(asio::io_context& io, const std::string& name, const std::optional<LineRule>& line);

  std::string Opening() const override;
  // Either way the port is closed, with which DTR and RTS fall.
  void End(Ending ending) override;
  // How the port is set; of the client's end nothing can be known.
  std::optional<LineSettings> Line() const override;
  std::string Rest() override;

 private:
  const std::string name_;
  const LineSettings settings_;
};

}  // namespace kesp::simulator
