// A COM port as the carrier of a conversation.
#pragma once

#include <asio/io_context.hpp>
#include <asio/serial_port.hpp>
#include <optional>
#include <string>
#include <vector>

#include "simulator/carrier.h"
#include "simulator/line_rule.h"

namespace kesp::simulator {

// One end of a null modem, of two adapters that are joined, or of a pair of ports that a driver joins; the
// client has the other end. The client's coming and going is not seen.
class ComPortCarrier : public Carrier {
 public:
  // Opens the port, sets it as the rule says, and raises DTR and RTS. Throws std::system_error.
  ComPortCarrier(asio::io_context& io, const std::string& name, const std::optional<LineRule>& line);

  std::string Opening() const override;
  asio::awaitable<Arrival> Receive(std::chrono::milliseconds patience) override;
  asio::awaitable<void> Send(std::string_view bytes) override;
  asio::awaitable<std::size_t> SendEndlessly(std::string_view block,
                                             std::chrono::milliseconds length) override;
  asio::awaitable<void> Pause(std::chrono::milliseconds length) override;
  // Either way the port is closed, with which DTR and RTS fall.
  void End(Ending ending) override;
  // How the port is set; of the client's end nothing can be known.
  std::optional<LineSettings> Line() const override;

 private:
  const std::string name_;
  const LineSettings settings_;
  asio::serial_port port_;
  std::vector<char> input_;
};

}  // namespace kesp::simulator
