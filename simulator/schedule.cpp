// Actions as a schedule: which bytes go out, and when.
#include "simulator/schedule.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace kesp::simulator {
namespace {

using std::chrono::milliseconds;

constexpr std::size_t kBlockLength = std::size_t{256} * 1024;
constexpr std::string_view kFloodPattern = "0123456789";

// The pattern over and over: whole patterns, at least one, and about a block long when `total` is so much.
std::string BlockOf(std::string_view pattern, std::size_t total) {
  const std::size_t length = std::max(pattern.size(), std::min(kBlockLength, total + pattern.size()));
  std::string block;
  block.reserve(length);
  while (block.empty() || block.size() + pattern.size() <= length) block += pattern;
  return block;
}

// Takes one action after the other.
class Planner {
 public:
  Planner(std::string_view command, std::string& held, bool holds)
      : command_(command), held_(held), holds_(holds) {}

  void operator()(const Send& send) { Put(send.bytes); }
  void operator()(const Echo& echo) { Put(std::string(command_) + echo.end); }
  void operator()(const Wait& wait) { pause_ += wait.length; }
  void operator()(const HoldForNext& /*hold*/) {}

  void operator()(const SendPieces& pieces) {
    const std::size_t length = pieces.bytes.size();
    const std::size_t count = std::max<std::size_t>(1, std::min(pieces.pieces, length));
    for (std::size_t i = 0; i < count; ++i) {
      if (i > 0) pause_ += pieces.gap;
      const std::size_t begin = length * i / count;
      Put(pieces.bytes.substr(begin, length * (i + 1) / count - begin), i + 1 == count);
    }
  }

  void operator()(const SendRepeated& repeated) {
    std::string block = BlockOf(repeated.pattern, repeated.total);
    // The last block takes the end along, so that the end is not a piece of its own.
    std::size_t times = repeated.total == 0 ? 0 : (repeated.total - 1) / block.size();
    std::string last = block.substr(0, repeated.total - times * block.size()) + repeated.end;
    // What is held back goes with the first block only.
    if (times > 0 && !held_.empty()) {
      Put(block, false);
      --times;
    }
    if (times > 0) {
      Put(std::move(block), false);
      steps_.back().times = times;
    }
    Put(std::move(last));
  }

  void operator()(const Flood& flood) {
    Add(BlockOf(kFloodPattern, kBlockLength));
    steps_.back().flood = flood.length;
  }

  void operator()(const SetStatusByte& status) {
    Add({});
    steps_.back().status_byte = status.value;
  }

  void operator()(const Ending& ending) {
    Add({});
    steps_.back().ending = ending;
  }

  std::vector<Step> Steps() {
    if (pause_.count() > 0) Add({});
    return std::move(steps_);
  }

 private:
  void Put(std::string bytes, bool is_whole = true) {
    if (holds_) {
      held_ += bytes;
      return;
    }
    bytes.insert(0, std::exchange(held_, std::string()));
    if (bytes.empty()) return;
    Add(std::move(bytes));
    steps_.back().is_whole = is_whole;
  }

  void Add(std::string bytes) {
    steps_.emplace_back();
    steps_.back().pause = std::exchange(pause_, milliseconds(0));
    steps_.back().bytes = std::move(bytes);
  }

  const std::string_view command_;
  std::string& held_;
  const bool holds_;
  milliseconds pause_{0};
  std::vector<Step> steps_;
};

}  // namespace

std::vector<Step> StepsOf(const ActionList& actions, std::string_view command, std::string& held) {
  const bool holds = std::any_of(actions.begin(), actions.end(), [](const Action& action) {
    return std::holds_alternative<HoldForNext>(action);
  });
  Planner planner(command, held, holds);
  for (const Action& action : actions) {
    std::visit(planner, action);
    if (std::holds_alternative<Ending>(action)) break;
  }
  return planner.Steps();
}

std::vector<Step> StepsOf(const ActionList& actions, std::string_view command) {
  std::string nothing_held;
  return StepsOf(actions, command, nothing_held);
}

}  // namespace kesp::simulator
