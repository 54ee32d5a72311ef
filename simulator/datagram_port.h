// The seam between the answering of discovery and what carries its datagrams.
#pragma once

#include <asio/awaitable.hpp>
#include <asio/ip/address_v4.hpp>
#include <asio/ip/udp.hpp>
#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace kesp::simulator {

// A datagram that came in, or why none could be received.
struct ReceivedDatagram {
  std::string bytes;
  asio::ip::udp::endpoint from;
  std::error_code error;
};

// One port, open when handed over. Used by one thread; one coroutine receives, any number send.
class DatagramPort {
 public:
  virtual ~DatagramPort() = default;

  virtual asio::awaitable<ReceivedDatagram> Receive() = 0;

  // Sends one datagram from this port and from this address of the machine, or from the one that the system
  // chooses, and returns when the system has taken it, or why it did not. `bytes` must live until then.
  virtual asio::awaitable<std::error_code> Send(std::string_view bytes, asio::ip::udp::endpoint to,
                                                std::optional<asio::ip::address_v4> from) = 0;

  // Waits; lets other work of the thread be done even when the length is 0.
  virtual asio::awaitable<void> Pause(std::chrono::milliseconds length) = 0;
};

}  // namespace kesp::simulator
