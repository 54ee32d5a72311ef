// A TCP connection as the carrier of a conversation.
#pragma once

#include <asio/ip/tcp.hpp>
#include <vector>

#include "simulator/carrier.h"

namespace kesp::simulator {

// Owns the connection. Small pieces go out as they are (no Nagle delay).
class TcpCarrier : public Carrier {
 public:
  explicit TcpCarrier(asio::ip::tcp::socket socket);

  std::string Opening() const override;
  asio::awaitable<Arrival> Receive(std::chrono::milliseconds patience) override;
  asio::awaitable<void> Send(std::string_view bytes) override;
  asio::awaitable<std::size_t> SendEndlessly(std::string_view block,
                                             std::chrono::milliseconds length) override;
  asio::awaitable<void> Pause(std::chrono::milliseconds length) override;
  void End(Ending ending) override;

 private:
  void DropInput();

  asio::ip::tcp::socket socket_;
  const std::string peer_;
  std::vector<char> input_;
};

}  // namespace kesp::simulator
