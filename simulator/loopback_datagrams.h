// A client for tests that sends and receives datagrams on this machine, with a deadline on every wait.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kesp::simulator {

struct HeardDatagram {
  std::string bytes;
  std::string address;  // of its sender
  std::uint16_t port = 0;
};

class LoopbackDatagrams {
 public:
  // Throws std::system_error when there is no socket to be had.
  LoopbackDatagrams();
  ~LoopbackDatagrams();
  LoopbackDatagrams(const LoopbackDatagrams&) = delete;
  LoopbackDatagrams& operator=(const LoopbackDatagrams&) = delete;

  // The port at 127.0.0.1 to which answers come.
  std::uint16_t port() const { return port_; }

  void Send(std::string_view bytes, std::uint16_t port) const;
  // The four bytes of discovery.
  void Discover(std::uint16_t port) const { Send({"\x00\x01\x00\xF6", 4}, port); }

  // The next datagram; nothing when the deadline passes.
  std::optional<HeardDatagram> Receive(
      std::chrono::milliseconds deadline = std::chrono::milliseconds(10'000)) const;

 private:
  int socket_;
  std::uint16_t port_ = 0;
};

}  // namespace kesp::simulator
