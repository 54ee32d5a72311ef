// What the system does with datagrams, on Windows.
#include <winsock2.h>
#include <ws2tcpip.h>

#include <array>
#include <asio/error.hpp>
#include <cstring>
#include <system_error>

#include "simulator/datagram_system.h"

namespace kesp::simulator {

using asio::ip::udp;

namespace {

// SIO_UDP_CONNRESET of <mstcpip.h>, which MinGW's lacks.
constexpr DWORD kReportUnreachable = _WSAIOW(IOC_VENDOR, 12);

}  // namespace

void PrepareForReplies(udp::socket& socket) {
  BOOL report = FALSE;
  DWORD unused = 0;
  ::WSAIoctl(socket.native_handle(), kReportUnreachable, &report, sizeof report, nullptr, 0, &unused, nullptr,
             nullptr);
}

asio::error_code SendNow(udp::socket& socket, std::string_view bytes, const udp::endpoint& to,
                         const std::optional<asio::ip::address_v4>& from) {
  udp::endpoint destination = to;
  WSABUF piece{static_cast<ULONG>(bytes.size()), const_cast<char*>(bytes.data())};
  WSAMSG message{};
  message.name = destination.data();
  message.namelen = static_cast<INT>(destination.size());
  message.lpBuffers = &piece;
  message.dwBufferCount = 1;
  alignas(WSACMSGHDR) std::array<char, WSA_CMSG_SPACE(sizeof(in_pktinfo))> control{};
  if (from) {
    message.Control = {static_cast<ULONG>(control.size()), control.data()};
    WSACMSGHDR* header = WSA_CMSG_FIRSTHDR(&message);
    header->cmsg_level = IPPROTO_IP;
    header->cmsg_type = IP_PKTINFO;
    header->cmsg_len = WSA_CMSG_LEN(sizeof(in_pktinfo));
    in_pktinfo source{};
    source.ipi_addr.s_addr = htonl(from->to_uint());
    std::memcpy(WSA_CMSG_DATA(header), &source, sizeof source);
  }
  DWORD sent = 0;
  if (::WSASendMsg(socket.native_handle(), &message, 0, &sent, nullptr, nullptr) == 0) return {};
  const int error = ::WSAGetLastError();
  if (error == WSAEWOULDBLOCK) return asio::error::would_block;
  return {error, std::system_category()};
}

}  // namespace kesp::simulator
