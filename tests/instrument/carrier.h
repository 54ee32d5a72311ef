// The seam between an instrument and what carries its bytes.
#pragma once

#include <asio/awaitable.hpp>
#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

#include "tests/instrument/action.h"

namespace kesp::simulator {

// The line to one client, open when handed over. Used by one thread, by one coroutine at a time. What fails
// because the client is gone throws std::system_error.
class Carrier {
 public:
  virtual ~Carrier() = default;

  // Who is at the other end, for the log.
  virtual std::string Peer() const = 0;

  // Waits for bytes and returns all that are there, at least one; nothing when the client ended the line.
  virtual asio::awaitable<std::string> Receive() = 0;

  // Sends the bytes as one piece, not joined with earlier ones, and returns when the system has taken them
  // all. `bytes` must live until then.
  virtual asio::awaitable<void> Send(std::string_view bytes) = 0;

  // Sends the block over and over for that time, or until the client is gone, and returns how many bytes the
  // system took. `block` must live until then.
  virtual asio::awaitable<std::size_t> SendEndlessly(std::string_view block,
                                                     std::chrono::milliseconds length) = 0;

  virtual asio::awaitable<void> Pause(std::chrono::milliseconds length) = 0;

  // Ends the line. kClose: the client gets all that was sent, and then the end. kReset: at once, and the
  // client sees a fault.
  virtual void End(Ending ending) = 0;
};

}  // namespace kesp::simulator
