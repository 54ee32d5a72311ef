// A device on the simulated bus: collects commands and holds what it has to say.
#include "simulator/gpib/simulated_device.h"

#include <string_view>
#include <utility>

#include "simulator/gpib/time_out.h"

namespace kesp::simulator::gpib {

SimulatedDevice::SimulatedDevice(DeviceDescription description) : description_(std::move(description)) {}

bool SimulatedDevice::OpensACommand(char byte) const {
  return input_.empty() && byte != '\r' && !description_.terminator.starts_with(byte);
}

void SimulatedDevice::Take(char byte, bool has_end, std::int64_t now) {
  if (OpensACommand(byte) && !description_.keeps_replies) replies_.clear();
  input_ += byte;
  const std::string& terminator = description_.terminator;
  const bool is_terminated = !terminator.empty() && input_.ends_with(terminator);
  if (is_terminated) input_.resize(input_.size() - terminator.size());
  if (is_terminated || has_end) Complete(now);
}

void SimulatedDevice::Clear() {
  input_.clear();
  replies_.clear();
}

std::optional<SimulatedDevice::Sent> SimulatedDevice::Send(std::int64_t now) {
  if (ReplyBegins() > now) return std::nullopt;
  Reply& reply = replies_.front();
  const char byte = reply.bytes[reply.sent++];
  const bool is_last = reply.sent == reply.bytes.size();
  if (is_last) replies_.pop_front();
  return Sent{byte, is_last && description_.end};
}

std::int64_t SimulatedDevice::ReplyBegins() const {
  return replies_.empty() ? kNever : replies_.front().begins;
}

void SimulatedDevice::Complete(std::int64_t now) {
  const std::string command = std::exchange(input_, {});
  const std::size_t length = command.ends_with('\r') ? command.size() - 1 : command.size();
  if (length == 0) return;
  const Answer& answer = AnswerTo(command.substr(0, length));
  if (answer.replies.empty()) return;
  const std::string& text = answer.replies[turns_[&answer]++ % answer.replies.size()];
  const std::string bytes = text + description_.reply_terminator;
  if (!bytes.empty()) replies_.push_back({bytes, now + std::int64_t{description_.delay_ms} * 1000});
}

const Answer& SimulatedDevice::AnswerTo(const std::string& command) const {
  if (const auto exact = description_.commands.find(command); exact != description_.commands.end())
    return exact->second;
  // Of the names that the command begins with, the longest.
  for (std::size_t length = command.size() + 1; length-- > 0;) {
    const auto found = description_.prefixes.find(command.substr(0, length));
    if (found != description_.prefixes.end()) return found->second;
  }
  return description_.unknown;
}

}  // namespace kesp::simulator::gpib
