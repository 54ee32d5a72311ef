// A UDP port on all IPv4 addresses of this machine.
#include "tests/instrument/udp_port.h"

#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <asio/post.hpp>
#include <asio/redirect_error.hpp>
#include <asio/steady_timer.hpp>
#include <asio/use_awaitable.hpp>
#include <cerrno>
#include <cstring>

namespace kesp::simulator {
namespace {

using asio::ip::udp;

constexpr std::size_t kInputLength = std::size_t{64} * 1024;

// One attempt to send, without waiting: 0, or the number of the error.
int SendFrom(int socket, std::string_view bytes, const udp::endpoint& to,
             const std::optional<asio::ip::address_v4>& from) {
  udp::endpoint destination = to;
  iovec piece{const_cast<char*>(bytes.data()), bytes.size()};
  msghdr message{};
  message.msg_name = destination.data();
  message.msg_namelen = static_cast<socklen_t>(destination.size());
  message.msg_iov = &piece;
  message.msg_iovlen = 1;
  alignas(cmsghdr) std::array<unsigned char, CMSG_SPACE(sizeof(in_pktinfo))> control{};
  if (from) {
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    cmsghdr* header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = IPPROTO_IP;
    header->cmsg_type = IP_PKTINFO;
    header->cmsg_len = CMSG_LEN(sizeof(in_pktinfo));
    in_pktinfo source{};
    source.ipi_spec_dst.s_addr = htonl(from->to_uint());
    std::memcpy(CMSG_DATA(header), &source, sizeof source);
  }
  return ::sendmsg(socket, &message, MSG_NOSIGNAL) < 0 ? errno : 0;
}

}  // namespace

UdpPort::UdpPort(asio::io_context& io, std::uint16_t port) : socket_(io, udp::v4()), input_(kInputLength) {
  // Not for a port of the system's choice: that must be nobody else's.
  if (port != 0) socket_.set_option(asio::socket_base::reuse_address(true));
  socket_.bind(udp::endpoint(udp::v4(), port));
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
    const int number = SendFrom(socket_.native_handle(), bytes, to, from);
    if (number == 0) co_return std::error_code();
    if (number == EINTR) continue;
    if (number != EAGAIN) co_return std::error_code(number, std::system_category());
    asio::error_code error;
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
