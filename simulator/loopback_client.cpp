// A TCP client for tests: blocking, with a deadline on every wait.
#include "simulator/loopback_client.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

namespace kesp::simulator {
namespace {

using Clock = std::chrono::steady_clock;

}  // namespace

LoopbackClient::LoopbackClient(std::uint16_t port) : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  if (::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return;
  const int error = errno;
  ::close(socket_);
  throw std::system_error(error, std::generic_category());
}

LoopbackClient::~LoopbackClient() {
  ::close(socket_);
}

void LoopbackClient::Send(std::string_view bytes) const {
  while (!bytes.empty()) {
    const ssize_t count = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (count < 0) throw std::system_error(errno, std::generic_category());
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

Heard LoopbackClient::ReadPiece(Clock::time_point deadline) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
  pollfd wait{socket_, POLLIN, 0};
  if (left <= 0 || ::poll(&wait, 1, static_cast<int>(left)) == 0) return Heard::kDeadline;
  std::array<char, 65536> piece;
  const ssize_t count = ::recv(socket_, piece.data(), piece.size(), 0);
  if (count == 0) return Heard::kClosed;
  if (count < 0 && errno == ECONNRESET) return Heard::kReset;
  if (count < 0) throw std::system_error(errno, std::generic_category());
  buffer_.append(piece.data(), static_cast<std::size_t>(count));
  return Heard::kBytes;
}

Reply LoopbackClient::ReadTo(std::string_view terminator, std::chrono::milliseconds deadline) {
  const Clock::time_point end = Clock::now() + deadline;
  std::size_t scanned = 0;
  for (;;) {
    const std::size_t found = buffer_.find(terminator, scanned);
    if (found != std::string::npos) {
      Reply reply{buffer_.substr(0, found + terminator.size()), Heard::kBytes};
      buffer_.erase(0, reply.bytes.size());
      return reply;
    }
    scanned = buffer_.size() - std::min(buffer_.size(), terminator.size() - 1);
    const Heard heard = ReadPiece(end);
    if (heard != Heard::kBytes) return {std::exchange(buffer_, std::string()), heard};
  }
}

Reply LoopbackClient::ReadToEnd(std::chrono::milliseconds deadline) {
  const Clock::time_point end = Clock::now() + deadline;
  for (;;) {
    const Heard heard = ReadPiece(end);
    if (heard != Heard::kBytes) return {std::exchange(buffer_, std::string()), heard};
  }
}

std::string LoopbackClient::Ask(std::string_view command) {
  Send(std::string(command) + "\r");
  Reply reply = ReadTo("\r");
  if (reply.end == Heard::kBytes) reply.bytes.pop_back();
  return reply.bytes;
}

}  // namespace kesp::simulator
