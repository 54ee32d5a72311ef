// An instrument that answers as its personality says, as a device among others.
#include "simulator/played_device.h"

#include <algorithm>
#include <utility>

#include "simulator/bytes_text.h"
#include "simulator/schedule.h"

namespace kesp::simulator {

PlayedDevice::PlayedDevice(Personality personality)
    : instrument_(std::move(personality)), framer_(instrument_.terminator()) {}

Deeds PlayedDevice::Take(std::string_view bytes, Moment now) {
  Deeds deeds;
  framer_.Add(bytes);
  for (auto command = framer_.Next(); command; command = framer_.Next()) {
    deeds.events.push_back("command " + Quoted(*command, command->size()));
    Plan(instrument_.Command(*command), *command, now);
  }
  for (; !later_.empty() && later_.front().when <= now; later_.pop_front())
    deeds.bytes += later_.front().bytes;
  return deeds;
}

std::optional<Moment> PlayedDevice::Due() const {
  if (later_.empty()) return std::nullopt;
  return later_.front().when;
}

void PlayedDevice::Plan(const ActionList& actions, const std::string& command, Moment now) {
  free_ = std::max(free_, now);
  for (const Step& step : StepsOf(actions, command)) {
    free_ += step.pause;
    for (std::size_t i = 0; i < step.times && !step.bytes.empty(); ++i) later_.push_back({free_, step.bytes});
  }
}

}  // namespace kesp::simulator
