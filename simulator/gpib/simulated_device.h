// A device on the simulated bus: collects commands and holds what it has to say.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>

#include "simulator/instrument.h"
#include "simulator/schedule.h"

namespace kesp::simulator::gpib {

// Belongs to the bus; every call comes under the driver's lock. Times are microseconds of the driver's clock.
class SimulatedDevice {
 public:
  // The personality has an address.
  explicit SimulatedDevice(const Personality& personality);

  const Address& address() const { return address_; }

  // A byte that comes in, and whether END comes with it. A command is complete at END or at the terminator;
  // its reply begins `delay_ms` later. The first byte of a command drops what is left of earlier replies,
  // unless the device keeps them; carriage returns and terminators by themselves are no command.
  void Take(char byte, bool has_end, std::int64_t now);

  // Drops what came in of a command, and everything not yet done.
  void Clear();

  // Does by now what is not sending: sets the status byte, leaves the bus.
  void PassTime(std::int64_t now);
  // Whether it has left the bus, for good.
  bool HasLeft() const { return has_left_; }

  // What a serial poll gets: the status byte, which no longer asks for service after it.
  char Poll();
  bool RequestsService() const { return (status_byte_ & kRequest) != 0; }

  struct Sent {
    char byte;
    bool has_end;
  };
  // The next byte of a reply that has begun; nothing when the device has nothing to say now.
  std::optional<Sent> Send(std::int64_t now);

  // When the next reply begins; kNever when there is none.
  std::int64_t ReplyBegins() const;

 private:
  struct Reply {
    std::string bytes;
    std::int64_t begins;
    bool is_whole;      // nothing of the same message follows
    std::size_t times;  // how often it is still to be sent
    std::size_t sent = 0;
  };

  // Bit 6 of the status byte.
  static constexpr std::uint8_t kRequest = 0x40;

  // What is not a reply, and its moment.
  struct Later {
    std::int64_t when;
    Step step;
  };

  bool OpensACommand(char byte) const;
  // Carries out what has come in as a command.
  void Complete(std::int64_t now);

  Instrument instrument_;
  const Address address_;
  const std::string terminator_;
  const bool end_;
  const std::int64_t delay_;  // microseconds
  const bool keeps_replies_;
  std::string input_;
  std::deque<Reply> replies_;
  std::deque<Later> later_;
  std::uint8_t status_byte_ = 0;
  bool has_left_ = false;
};

}  // namespace kesp::simulator::gpib
