// Connect, send, receive, close.
#include "bench/bare_socket.h"

#include <ws2tcpip.h>

#include <stdexcept>

namespace kesp::bench {

namespace {

void Check(bool succeeded, const char* what) {
  if (!succeeded)
    throw std::runtime_error(std::string(what) + " failed: " + std::to_string(WSAGetLastError()));
}

}  // namespace

BareSocket::BareSocket(const std::string& host, std::uint16_t port)
    : socket_(socket(AF_INET, SOCK_STREAM, IPPROTO_TCP)), buffer_(std::size_t{64} * 1024, '\0') {
  Check(socket_ != INVALID_SOCKET, "socket");
  const BOOL no_delay = TRUE;
  setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&no_delay), sizeof no_delay);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = inet_addr(host.c_str());
  Check(connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0, "connect");
}

BareSocket::~BareSocket() {
  closesocket(socket_);
}

void BareSocket::Send(const std::string& bytes) const {
  Check(send(socket_, bytes.data(), static_cast<int>(bytes.size()), 0) == static_cast<int>(bytes.size()),
        "send");
}

std::size_t BareSocket::ReceiveLine() {
  std::size_t total = 0;
  for (;;) {
    const int received = recv(socket_, buffer_.data(), static_cast<int>(buffer_.size()), 0);
    Check(received > 0, "recv");
    total += static_cast<std::size_t>(received);
    if (buffer_[static_cast<std::size_t>(received) - 1] == '\r') return total;
  }
}

}  // namespace kesp::bench
