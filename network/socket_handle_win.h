// A Winsock socket handle that closes itself.
#pragma once

#include <winsock2.h>

#include <utility>

namespace kesp {

class SocketHandle {
 public:
  SocketHandle() = default;
  explicit SocketHandle(SOCKET socket) : socket_(socket) {}
  ~SocketHandle() { Reset(); }
  SocketHandle(SocketHandle&& other) noexcept : socket_(std::exchange(other.socket_, INVALID_SOCKET)) {}
  SocketHandle& operator=(SocketHandle&& other) noexcept {
    Reset();
    socket_ = std::exchange(other.socket_, INVALID_SOCKET);
    return *this;
  }

  SOCKET get() const { return socket_; }
  bool IsOpen() const { return socket_ != INVALID_SOCKET; }

  void Reset() {
    if (IsOpen()) closesocket(std::exchange(socket_, INVALID_SOCKET));
  }

 private:
  SOCKET socket_ = INVALID_SOCKET;
};

}  // namespace kesp
