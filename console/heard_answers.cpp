// What an instrument answered to one command, as often as a trace tells.
#include "console/heard_answers.h"

#include <algorithm>

namespace kesp::console {
namespace {

// A description with more for one command is no help to anybody.
constexpr std::size_t kMostAnswers = 1000;

}  // namespace

bool HeardAnswer::Matches(const HeardAnswer& other) const {
  return bytes == other.bytes && is_whole == other.is_whole && was_closed == other.was_closed;
}

std::uint32_t HeardAnswer::MedianDelayMs() const {
  if (delays_ms.empty()) return 0;
  std::vector<std::uint32_t> sorted = delays_ms;
  const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
  std::nth_element(sorted.begin(), middle, sorted.end());
  return *middle;
}

// What a command came to that nobody read a reply to is not known: an update only.
void HeardAnswers::Add(const Exchange& exchange) {
  if (exchange.kind == Exchange::Kind::kUpdate) return;
  if (answers_.size() == kMostAnswers) {
    ++left_out_;
    return;
  }
  HeardAnswer answer;
  answer.bytes = exchange.received;
  answer.was_closed = exchange.was_closed && exchange.has_failed;
  answer.is_whole = exchange.is_whole || !exchange.received;
  if (exchange.delay_ms && exchange.received) answer.delays_ms.push_back(*exchange.delay_ms);
  answers_.push_back(std::move(answer));
}

std::vector<HeardAnswer> HeardAnswers::InTurn() const {
  // The longest beginning that is an end of the first i answers, too; the rest is how often they come round.
  std::vector<std::size_t> border(answers_.size() + 1, 0);
  for (std::size_t i = 1, length = 0; i < answers_.size(); ++i) {
    while (length > 0 && !answers_[i].Matches(answers_[length])) length = border[length];
    if (answers_[i].Matches(answers_[length])) ++length;
    border[i + 1] = length;
  }
  const std::size_t period = answers_.size() - border[answers_.size()];
  // Once and a bit is no round: the next answer may have been another one.
  const std::size_t count = period * 2 <= answers_.size() ? period : answers_.size();
  std::vector<HeardAnswer> turns(answers_.begin(), answers_.begin() + static_cast<std::ptrdiff_t>(count));
  for (std::size_t i = count; i < answers_.size(); ++i) {
    std::vector<std::uint32_t>& delays = turns[i % count].delays_ms;
    delays.insert(delays.end(), answers_[i].delays_ms.begin(), answers_[i].delays_ms.end());
  }
  return turns;
}

}  // namespace kesp::console
