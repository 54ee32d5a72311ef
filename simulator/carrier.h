// The seam between a talk and the line that carries its bytes.
#pragma once

#include <asio/awaitable.hpp>
#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/action.h"
#include "simulator/line_settings.h"

namespace kesp::simulator {

// The patience of one who waits until something comes.
inline constexpr std::chrono::milliseconds kForever = std::chrono::milliseconds::max();

// How a wait for bytes ended: with at least one byte, with nothing in that time, or with the end of the line.
enum class Arrived { kBytes, kNothing, kEnd };

struct Arrival {
  Arrived what = Arrived::kEnd;
  std::string bytes;
};

// The line to one client, open when handed over. Used by one thread, by one coroutine at a time. What fails
// because the client is gone throws std::system_error.
class Carrier {
 public:
  virtual ~Carrier() = default;

  // What the line is, for the log: "connected from 127.0.0.1:53122".
  virtual std::string Opening() const = 0;

  // Waits for bytes, no longer than that, and returns all that are there. No byte is lost by the time being
  // up.
  virtual asio::awaitable<Arrival> Receive(std::chrono::milliseconds patience) = 0;

  // Sends the bytes as one piece, not joined with earlier ones, and returns when the system has taken them
  // all. `bytes` must live until then.
  virtual asio::awaitable<void> Send(std::string_view bytes) = 0;

  // Sends the block over and over for that time, or until the client is gone, and returns how many bytes the
  // system took. `block` must live until then.
  virtual asio::awaitable<std::size_t> SendEndlessly(std::string_view block,
                                                     std::chrono::milliseconds length) = 0;

  virtual asio::awaitable<void> Pause(std::chrono::milliseconds length) = 0;

  // The clock by which it pauses.
  virtual std::chrono::steady_clock::duration Now() const {
    return std::chrono::steady_clock::now().time_since_epoch();
  }

  // Ends the line. kClose: the client gets all that was sent, and then the end. kReset: at once, and the
  // client sees a fault. A serial line has one end only: its adapter is pulled.
  virtual void End(Ending ending) = 0;

  // How a serial line is set; nothing for other lines, and when the line has ended.
  virtual std::optional<LineSettings> Line() const { return std::nullopt; }

  // What has come in and was not received yet, without waiting; only for lines that have settings.
  virtual std::string Rest() { return {}; }
};

}  // namespace kesp::simulator
