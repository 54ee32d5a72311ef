// The conversation of a device with the client of its serial line.
#pragma once

#include <string_view>

#include "simulator/carrier.h"
#include "simulator/device.h"
#include "simulator/event_log.h"
#include "simulator/line_log.h"
#include "simulator/talk.h"

namespace kesp::simulator {

// Carries the bytes, tells the device the time, and logs what comes, what goes and what the device says about
// itself. All that is handed in must outlive it.
class DeviceTalk : public Talk {
 public:
  // number is the connection's number in the log.
  DeviceTalk(Carrier& carrier, Device& device, EventLog& log, unsigned number);

  asio::awaitable<void> Run() override;
  void Finish() override { line_log_.Finish(); }

 private:
  asio::awaitable<void> Exchange();
  asio::awaitable<void> Answer(std::string_view bytes);
  bool LineSuits() const;
  std::chrono::milliseconds Patience() const;

  Carrier& carrier_;
  Device& device_;
  EventLog& log_;
  const unsigned number_;
  LineLog line_log_;
};

}  // namespace kesp::simulator
