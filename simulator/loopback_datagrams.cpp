// A client for tests that sends and receives datagrams on this machine, with a deadline on every wait.
#include "simulator/loopback_datagrams.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <vector>

namespace kesp::simulator {
namespace {

sockaddr_in Loopback(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  return address;
}

[[noreturn]] void ThrowLastError() {
  throw std::system_error(errno, std::generic_category());
}

}  // namespace

LoopbackDatagrams::LoopbackDatagrams() : socket_(::socket(AF_INET, SOCK_DGRAM, 0)) {
  sockaddr_in address = Loopback(0);
  socklen_t length = sizeof address;
  if (::bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      ::getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &length) != 0)
    ThrowLastError();
  port_ = ntohs(address.sin_port);
}

LoopbackDatagrams::~LoopbackDatagrams() {
  ::close(socket_);
}

void LoopbackDatagrams::Send(std::string_view bytes, std::uint16_t port) const {
  const sockaddr_in address = Loopback(port);
  if (::sendto(socket_, bytes.data(), bytes.size(), 0, reinterpret_cast<const sockaddr*>(&address),
               sizeof address) < 0)
    ThrowLastError();
}

std::optional<HeardDatagram> LoopbackDatagrams::Receive(std::chrono::milliseconds deadline) const {
  pollfd wait{socket_, POLLIN, 0};
  if (::poll(&wait, 1, static_cast<int>(deadline.count())) == 0) return std::nullopt;
  std::vector<char> bytes(65536);
  sockaddr_in address{};
  socklen_t length = sizeof address;
  const ssize_t count =
      ::recvfrom(socket_, bytes.data(), bytes.size(), 0, reinterpret_cast<sockaddr*>(&address), &length);
  if (count < 0) ThrowLastError();
  char text[INET_ADDRSTRLEN] = "";
  ::inet_ntop(AF_INET, &address.sin_addr, text, sizeof text);
  return HeardDatagram{std::string(bytes.data(), static_cast<std::size_t>(count)), text,
                       ntohs(address.sin_port)};
}

}  // namespace kesp::simulator
