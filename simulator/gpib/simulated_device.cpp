// A device on the simulated bus: collects commands and holds what it has to say.
#include "simulator/gpib/simulated_device.h"

#include <chrono>
#include <string_view>
#include <utility>

#include "simulator/gpib/time_out.h"
#include "simulator/schedule.h"

namespace kesp::simulator::gpib {

SimulatedDevice::SimulatedDevice(const Personality& personality)
    : instrument_(personality),
      address_(personality.address.value()),
      terminator_(personality.terminator),
      end_(personality.end),
      delay_(std::int64_t{personality.delay_ms} * 1000),
      keeps_replies_(personality.keeps_replies) {}

bool SimulatedDevice::OpensACommand(char byte) const {
  return input_.empty() && byte != '\r' && !terminator_.starts_with(byte);
}

void SimulatedDevice::Take(char byte, bool has_end, std::int64_t now) {
  if (OpensACommand(byte) && !keeps_replies_) replies_.clear();
  input_ += byte;
  const bool is_terminated = !terminator_.empty() && input_.ends_with(terminator_);
  if (is_terminated) input_.resize(input_.size() - terminator_.size());
  if (is_terminated || has_end) Complete(now);
}

void SimulatedDevice::Clear() {
  input_.clear();
  replies_.clear();
  later_.clear();
}

void SimulatedDevice::PassTime(std::int64_t now) {
  for (; !later_.empty() && later_.front().when <= now; later_.pop_front()) {
    const Step& step = later_.front().step;
    if (step.status_byte) status_byte_ = *step.status_byte;
    // What it has sent is read before it closes.
    if (step.ending == Ending::kClose && !replies_.empty()) return;
    has_left_ = has_left_ || step.ending.has_value();
  }
  if (has_left_) replies_.clear();
}

char SimulatedDevice::Poll() {
  const auto polled = static_cast<char>(status_byte_);
  status_byte_ &= static_cast<std::uint8_t>(~kRequest);
  return polled;
}

std::optional<SimulatedDevice::Sent> SimulatedDevice::Send(std::int64_t now) {
  PassTime(now);
  if (ReplyBegins() > now) return std::nullopt;
  Reply& reply = replies_.front();
  const char byte = reply.bytes[reply.sent++];
  const bool is_last = reply.sent == reply.bytes.size();
  const bool has_end = is_last && reply.is_whole && end_;
  if (is_last) reply.sent = 0;
  if (is_last && --reply.times == 0) replies_.pop_front();
  return Sent{byte, has_end};
}

std::int64_t SimulatedDevice::ReplyBegins() const {
  return replies_.empty() ? kNever : replies_.front().begins;
}

void SimulatedDevice::Complete(std::int64_t now) {
  const std::string command = std::exchange(input_, {});
  const std::size_t length = command.ends_with('\r') ? command.size() - 1 : command.size();
  if (length == 0) return;
  const std::string_view name = std::string_view(command).substr(0, length);
  std::int64_t begins = now + delay_;
  for (const Step& step : StepsOf(instrument_.Command(name), name)) {
    begins += std::chrono::microseconds(step.pause).count();
    if (step.bytes.empty()) {
      later_.push_back({begins, step});
    } else {
      replies_.push_back({step.bytes, begins, step.is_whole, step.times});
    }
  }
}

}  // namespace kesp::simulator::gpib
