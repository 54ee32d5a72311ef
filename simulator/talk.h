// The talk of a device with one client, whatever carries it.
#pragma once

#include <asio/awaitable.hpp>
#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

#include "simulator/carrier.h"
#include "simulator/device.h"
#include "simulator/event_log.h"
#include "simulator/line_log.h"

namespace kesp::simulator {

// Carries the bytes, tells the device the time, and logs what comes, what goes and what the device says about
// itself. On a serial line with other settings than the device's own, what comes is not understood and
// answered with garbage. All that is handed in must outlive it.
class Talk {
 public:
  // number is the connection's number in the log.
  Talk(Carrier& carrier, Device& device, EventLog& log, unsigned number);

  // Talks until either side ends the line; a client that is gone is a line in the log and no error.
  asio::awaitable<void> Run();

  // Logs what came over a serial line and is not in the log yet. For the end, however Run came to it.
  void Finish() { line_log_.Finish(); }

 private:
  // Does what the device does by now. False when the device has ended the line.
  asio::awaitable<bool> Act();
  asio::awaitable<void> Do(const Step& step);
  // Waits for bytes or for the device. False when the client has left.
  asio::awaitable<bool> Wait();
  asio::awaitable<void> Hear(std::string_view bytes);
  Moment Now() const;
  std::chrono::milliseconds Patience() const;
  void Note(const std::string& text);
  void Count(std::string_view bytes, std::size_t total);
  void LogSent(const std::string& suffix);

  Carrier& carrier_;
  Device& device_;
  EventLog& log_;
  const unsigned number_;
  LineLog line_log_;

  // What went out since it was last logged.
  struct Sent {
    std::string head;  // the first bytes, more of them than a log quotes
    std::size_t bytes = 0;
    std::size_t pieces = 0;
  };
  Sent sent_;
};

}  // namespace kesp::simulator
