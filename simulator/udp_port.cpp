// A UDP port on all IPv4 addresses of this machine.
#include "simulator/udp_port.h"

#include <asio/post.hpp>
#include <asio/redirect_error.hpp>
#include <asio/steady_timer.hpp>
#include <asio/use_awaitable.hpp>

#include "simulator/datagram_system.h"

namespace kesp::simulator {
namespace {

using asio::ip::udp;

constexpr std::size_t kInputLength = std::size_t{64} * 1024;

}  // namespace

UdpPort::UdpPort(asio::io_context& io, std::uint16_t port) : socket_(io, udp::v4()), input_(kInputLength) {
  // Not for a port of the system's choice: that must be nobody else's.
  if (port != 0) socket_.set_option(asio::socket_base::reuse_address(true));
  socket_.bind(udp::endpoint(udp::v4(), port));
  PrepareForReplies(socket_);
  socket_.non_blocking(true);
}

asio::awaitable<ReceivedDatagram> UdpPort::Receive() {
  ReceivedDatagram received;
  const std::size_t length = co_await socket_.async_receive_from(
      asio::buffer(input_), received.from, asio::redirect_error(asio::use_awaitable, received.error));
  received.bytes.assign(input_.data(), length);
  co_return received;
}

asio::awaitable<std::error_code> UdpPort::Send(std::string_view bytes, udp::endpoint to,
                                               std::optional<asio::ip::address_v4> from) {
  for (;;) {
    asio::error_code error = SendNow(socket_, bytes, to, from);
    if (error != asio::error::would_block) co_return error;
    co_await socket_.async_wait(udp::socket::wait_write, asio::redirect_error(asio::use_awaitable, error));
    if (error) co_return error;
  }
}

asio::awaitable<void> UdpPort::Pause(std::chrono::milliseconds length) {
  if (length.count() == 0) {
    co_await asio::post(socket_.get_executor(), asio::use_awaitable);
    co_return;
  }
  asio::steady_timer timer(socket_.get_executor(), length);
  co_await timer.async_wait(asio::use_awaitable);
}

}  // namespace kesp::simulator
