// An instrument that answers as its personality says, as a device.
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <string_view>

#include "simulator/command_framer.h"
#include "simulator/device.h"
#include "simulator/instrument.h"
#include "simulator/place.h"

namespace kesp::simulator {

// One client's view of an instrument. It carries out one command after the other.
class PlayedDevice : public Device {
 public:
  // Clients of one instrument share it. With a line of its own it greets its client, hears nothing while it
  // answers, and resets a line on which a command has no end; behind another device it does none of this.
  PlayedDevice(std::shared_ptr<Instrument> instrument, Place place);

  void Take(std::string_view bytes, Moment now) override;
  std::optional<Deed> Next(Moment now) override;
  std::optional<Moment> Due() const override { return due_; }
  bool Listens() const override { return deeds_.empty(); }
  std::optional<LineRule> Line() const override { return instrument_->line(); }

 private:
  void Obey();
  void Plan(const ActionList& actions, std::string_view command);

  const std::shared_ptr<Instrument> instrument_;
  const Place place_;
  CommandFramer framer_;
  std::deque<Deed> deeds_;
  // When the first of them is done; set when the one before it is over.
  std::optional<Moment> due_;
  // What waits for the next reply.
  std::string held_;
};

}  // namespace kesp::simulator
