// A TCP client for tests: blocking, with a deadline on every wait.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace kesp::simulator {

// How a wait for bytes ended.
enum class Heard { kBytes, kClosed, kReset, kDeadline };

struct Reply {
  std::string bytes;
  Heard end = Heard::kDeadline;
};

// Connects to a port of this machine when made; throws std::system_error when nobody listens.
class LoopbackClient {
 public:
  explicit LoopbackClient(std::uint16_t port);
  ~LoopbackClient();
  LoopbackClient(const LoopbackClient&) = delete;
  LoopbackClient& operator=(const LoopbackClient&) = delete;

  void Send(std::string_view bytes) const;

  // Reads up to and with the first `terminator`: kBytes. What came after it is kept for the next call. Ends
  // earlier, with what there is, when the line ends or the deadline passes.
  Reply ReadTo(std::string_view terminator,
               std::chrono::milliseconds deadline = std::chrono::milliseconds(10'000));

  // Reads until the line ends or the deadline passes.
  Reply ReadToEnd(std::chrono::milliseconds deadline = std::chrono::milliseconds(10'000));

  // One command with CR out, one reply with CR in (returned without it).
  std::string Ask(std::string_view command);

 private:
  Heard ReadPiece(std::chrono::steady_clock::time_point deadline);

  int socket_;
  std::string buffer_;
};

}  // namespace kesp::simulator
