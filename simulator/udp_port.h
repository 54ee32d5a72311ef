// A UDP port on all IPv4 addresses of this machine.
#pragma once

#include <asio/io_context.hpp>
#include <asio/ip/udp.hpp>
#include <cstdint>
#include <vector>

#include "simulator/datagram_port.h"

namespace kesp::simulator {

// It is open on all addresses, because a socket that is bound to a single one gets no broadcasts on Linux.
// Must not outlive the io_context.
class UdpPort : public DatagramPort {
 public:
  // Port 0 stands for a free one that the system picks. Any other port may be open more than once, if all
  // who have it allow that: each then gets the broadcasts. Throws std::system_error when the port cannot be
  // had.
  UdpPort(asio::io_context& io, std::uint16_t port);

  asio::ip::udp::endpoint endpoint() const { return socket_.local_endpoint(); }

  asio::awaitable<ReceivedDatagram> Receive() override;
  asio::awaitable<std::error_code> Send(std::string_view bytes, asio::ip::udp::endpoint to,
                                        std::optional<asio::ip::address_v4> from) override;
  asio::awaitable<void> Pause(std::chrono::milliseconds length) override;

 private:
  asio::ip::udp::socket socket_;
  std::vector<char> input_;
};

}  // namespace kesp::simulator
