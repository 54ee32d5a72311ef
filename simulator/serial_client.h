// A client of a serial line for tests, with a deadline on every wait.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace kesp::simulator {

// Opens the line when made; throws std::system_error when there is none.
class SerialClient {
 public:
  explicit SerialClient(const std::string& path);
  ~SerialClient();
  SerialClient(const SerialClient&) = delete;
  SerialClient& operator=(const SerialClient&) = delete;

  int descriptor() const { return line_; }

  // Sets the line: 9600 or 19200 bits a second, one or two stop bits, as a terminal's settings have them
  // (B9600).
  void Set(unsigned rate, unsigned stop_bits = 1) const;

  // Sends the bytes; throws std::system_error when the line is gone, and after ten seconds in which it takes
  // nothing.
  void Send(std::string_view bytes) const;

  // Sends until the line takes nothing more for a while, and returns how many bytes it took.
  std::size_t Fill() const;

  // What comes up to and with the first `terminator`, or all that comes until the line is gone or the
  // deadline passes. What comes after the terminator is kept for the next call.
  std::string ReadTo(std::string_view terminator,
                     std::chrono::milliseconds deadline = std::chrono::milliseconds(10'000));

  // Whether the line is gone by the deadline, as when an adapter is pulled.
  bool IsGone() const;

  // One command with CR out, one reply with CR in (returned without it).
  std::string Ask(std::string_view command);

 private:
  int line_;
  std::string buffer_;
};

}  // namespace kesp::simulator
