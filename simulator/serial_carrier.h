// A serial line as the carrier of a conversation.
#pragma once

#include <asio/any_io_executor.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <string>
#include <vector>

#include "simulator/carrier.h"
#include "simulator/pseudo_terminal.h"

namespace kesp::simulator {

// Owns its pseudo-terminal. The client's coming and
// going is not seen. A client that does not read stops what is sent once the system's buffers, some
// kilobytes, are full.
class SerialCarrier : public Carrier {
 public:
  // link: the name of the line, as in PseudoTerminal.
  SerialCarrier(const asio::any_io_executor& executor, const std::string& link);

  std::string Opening() const override;
  asio::awaitable<Arrival> Receive(std::chrono::milliseconds patience) override;
  asio::awaitable<void> Send(std::string_view bytes) override;
  asio::awaitable<std::size_t> SendEndlessly(std::string_view block,
                                             std::chrono::milliseconds length) override;
  asio::awaitable<void> Pause(std::chrono::milliseconds length) override;
  void End(Ending ending) override;
  std::optional<LineSettings> Line() const override;
  std::string Rest() override;

 private:
  PseudoTerminal terminal_;
  asio::posix::stream_descriptor master_;
  std::vector<char> input_;
};

}  // namespace kesp::simulator
