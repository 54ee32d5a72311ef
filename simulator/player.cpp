// Carries out the schedules of actions on a carrier.
#include "simulator/player.h"

#include <algorithm>
#include <vector>

namespace kesp::simulator {
namespace {

constexpr std::size_t kHeadLength = 64;

}  // namespace

asio::awaitable<LineState> Player::Play(const ActionList& actions, std::string_view command) {
  const std::vector<Step> steps = StepsOf(actions, command, held_);
  for (const Step& step : steps) {
    co_await Do(step);
    if (!step.ending) continue;
    carrier_.End(*step.ending);
    co_return *step.ending == Ending::kClose ? LineState::kClosed : LineState::kReset;
  }
  co_return LineState::kOpen;
}

asio::awaitable<void> Player::Do(const Step& step) {
  if (step.pause.count() > 0) co_await carrier_.Pause(step.pause);
  if (step.flood) {
    const std::size_t taken = co_await carrier_.SendEndlessly(step.bytes, *step.flood);
    Count(step.bytes, taken);
    co_return;
  }
  if (step.bytes.empty()) co_return;
  for (std::size_t i = 0; i < step.times; ++i) {
    co_await carrier_.Send(step.bytes);
    Count(step.bytes, step.bytes.size());
  }
}

void Player::Count(std::string_view bytes, std::size_t total) {
  const std::size_t room = kHeadLength - std::min(kHeadLength, sent_.head.size());
  sent_.head += bytes.substr(0, std::min(room, total));
  sent_.bytes += total;
  sent_.pieces += 1;
}

}  // namespace kesp::simulator
