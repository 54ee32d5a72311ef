// A controller with an address and block checks, like those that share one line.
#include "simulator/omega_controller.h"

#include <utility>

namespace kesp::simulator {
namespace {

constexpr char kStx = 2;
constexpr char kEtx = 3;
constexpr char kEot = 4;
constexpr char kEnq = 5;
constexpr char kAck = 6;
constexpr char kNak = 21;
constexpr char kEnd[] = "\r\n";
// More than any frame has; so much without an end is noise.
constexpr std::size_t kLongestFrame = 256;

std::string Doubled(std::string_view digits) {
  std::string doubled;
  for (const char digit : digits) doubled.append(2, digit);
  return doubled;
}

}  // namespace

char BlockCheck(std::string_view bytes) {
  char check = 0;
  for (const char byte : bytes) check = static_cast<char>(check ^ byte);
  return check;
}

OmegaController::OmegaController(std::string_view address, Values values, LineRule line, Checks checks)
    : address_(Doubled(address)), line_(line), checks_(checks), values_(std::move(values)) {}

void OmegaController::Take(std::string_view bytes, Moment /*now*/) {
  for (const char byte : bytes) replies_ += Answer(byte);
}

std::optional<Deed> OmegaController::Next(Moment /*now*/) {
  if (replies_.empty()) return std::nullopt;
  return Saying(std::exchange(replies_, std::string()));
}

// The byte's meaning depends on its place: the block check may be any byte, EOT and CR included.
std::string OmegaController::Answer(char byte) {
  const bool is_check = !frame_.empty() && frame_.back() == kEtx;
  if (!is_check && byte == kEot) {
    frame_.assign(1, kEot);
    return {};
  }
  if (frame_.empty()) return {};
  frame_ += byte;
  if (!is_check && byte != kEnq) {
    if (frame_.size() > kLongestFrame) frame_.clear();
    return {};
  }
  const std::string frame = std::exchange(frame_, std::string());
  if (frame.compare(1, address_.size(), address_) != 0) return {};
  const std::string rest = frame.substr(1 + address_.size());
  if (!is_check) return Read(rest.substr(0, rest.size() - 1));
  if (rest.front() != kStx) return {};
  return Write(rest.substr(1, rest.size() - 2), byte);
}

std::string OmegaController::Read(const std::string& command) const {
  const auto found = values_.find(command);
  if (found == values_.end()) return kEot + std::string(kEnd);
  const std::string block = command + found->second + kEtx;
  const char check = BlockCheck(block);
  return kStx + block + (checks_ == Checks::kRight ? check : static_cast<char>(check ^ 1)) + kEnd;
}

std::string OmegaController::Write(const std::string& block, char check) {
  if (BlockCheck(block) != check) return kNak + std::string(kEnd);
  // Of names that begin alike the longest comes last, and counts.
  for (auto named = values_.rbegin(); named != values_.rend(); ++named) {
    auto& [command, value] = *named;
    if (!block.starts_with(command)) continue;
    value = block.substr(command.size(), block.size() - command.size() - 1);
    return kAck + std::string(kEnd);
  }
  return kEot + std::string(kEnd);
}

}  // namespace kesp::simulator
