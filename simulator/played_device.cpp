// An instrument that answers as its personality says, as a device.
#include "simulator/played_device.h"

#include <utility>

#include "simulator/bytes_text.h"

namespace kesp::simulator {

PlayedDevice::PlayedDevice(std::shared_ptr<Instrument> instrument, Place place)
    : instrument_(std::move(instrument)), place_(place), framer_(instrument_->terminator()) {
  if (place_ == Place::kOwnLine) Plan(instrument_->Connected(), {});
}

void PlayedDevice::Take(std::string_view bytes, Moment /*now*/) {
  framer_.Add(bytes);
}

std::optional<Deed> PlayedDevice::Next(Moment now) {
  if (deeds_.empty()) Obey();
  if (deeds_.empty()) return std::nullopt;
  if (!due_) due_ = now + deeds_.front().step.pause;
  if (now < *due_) return std::nullopt;
  due_.reset();
  return TakeFirst(deeds_);
}

void PlayedDevice::Obey() {
  const std::optional<std::string> command = framer_.Next();
  if (command) {
    deeds_.push_back({"command " + Quoted(*command), {}});
    Plan(instrument_->Command(*command), *command);
  } else if (place_ == Place::kOwnLine && framer_.TooLong()) {
    deeds_.push_back({"command without an end", {}});
    deeds_.back().step.ending = Ending::kReset;
  }
}

void PlayedDevice::Plan(const ActionList& actions, std::string_view command) {
  for (Step& step : StepsOf(actions, command, held_)) deeds_.push_back({{}, std::move(step)});
  if (!held_.empty()) deeds_.push_back({Counted(held_.size(), "byte") + " held back for the next reply", {}});
}

}  // namespace kesp::simulator
