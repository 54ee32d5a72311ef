// The bare Winsock client that the library is measured against: blocking calls and nothing else.
#pragma once

#include <winsock2.h>

#include <cstdint>
#include <string>

namespace kesp::bench {

// One connection. Throws std::runtime_error when a call fails.
class BareSocket {
 public:
  BareSocket(const std::string& host, std::uint16_t port);
  ~BareSocket();
  BareSocket(const BareSocket&) = delete;
  BareSocket& operator=(const BareSocket&) = delete;

  void Send(const std::string& bytes) const;

  // Receives until a carriage return has come; returns the number of bytes.
  std::size_t ReceiveLine();

 private:
  SOCKET socket_;
  std::string buffer_;
};

}  // namespace kesp::bench
