// What the system does with datagrams, on Linux.
#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <asio/error.hpp>
#include <cerrno>
#include <cstring>
#include <system_error>

#include "simulator/datagram_system.h"

namespace kesp::simulator {

using asio::ip::udp;

void PrepareForReplies(udp::socket& /*socket*/) {}

asio::error_code SendNow(udp::socket& socket, std::string_view bytes, const udp::endpoint& to,
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
  for (;;) {
    if (::sendmsg(socket.native_handle(), &message, MSG_NOSIGNAL) >= 0) return {};
    if (errno == EAGAIN) return asio::error::would_block;
    if (errno != EINTR) return {errno, std::system_category()};
  }
}

}  // namespace kesp::simulator
