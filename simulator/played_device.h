// An instrument that answers as its personality says, as a device among others.
#pragma once

#include <deque>
#include <string>
#include <string_view>

#include "simulator/command_framer.h"
#include "simulator/device.h"
#include "simulator/instrument.h"

namespace kesp::simulator {

// What stands behind a radio modem or at a port of a switch. It carries out one command after the other; what
// it sends later, it keeps until then.
class PlayedDevice : public Device {
 public:
  // The personality must not close, reset, flood or hold back, which needs a line of one's own.
  explicit PlayedDevice(Personality personality);

  Deeds Take(std::string_view bytes, Moment now) override;
  std::optional<Moment> Due() const override;

 private:
  struct Later {
    Moment when;
    std::string bytes;
  };

  void Plan(const ActionList& actions, const std::string& command, Moment now);

  Instrument instrument_;
  CommandFramer framer_;
  std::deque<Later> later_;
  // When the last thing planned is over.
  Moment free_{0};
};

}  // namespace kesp::simulator
