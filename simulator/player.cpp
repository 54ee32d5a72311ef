// Carries out lists of actions on a carrier.
#include "simulator/player.h"

#include <algorithm>
#include <variant>

namespace kesp::simulator {
namespace {

constexpr std::size_t kHeadLength = 64;
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

}  // namespace

asio::awaitable<LineState> Player::Play(const ActionList& actions, std::string_view command) {
  command_ = command;
  holding_ = std::any_of(actions.begin(), actions.end(),
                         [](const Action& action) { return std::holds_alternative<HoldForNext>(action); });
  for (const Action& action : actions) {
    co_await std::visit([this](const auto& kind) { return Do(kind); }, action);
    if (state_ != LineState::kOpen) break;
  }
  co_return state_;
}

asio::awaitable<void> Player::Do(const Send& send) {
  co_await Put(send.bytes);
}

asio::awaitable<void> Player::Do(const SendPieces& pieces) {
  const std::string_view bytes = pieces.bytes;
  const std::size_t count = std::max<std::size_t>(1, std::min(pieces.pieces, bytes.size()));
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0) co_await carrier_.Pause(pieces.gap);
    const std::size_t begin = bytes.size() * i / count;
    const std::size_t end = bytes.size() * (i + 1) / count;
    co_await Put(bytes.substr(begin, end - begin));
  }
}

asio::awaitable<void> Player::Do(const SendRepeated& repeated) {
  const std::string block = BlockOf(repeated.pattern, repeated.total);
  std::size_t left = repeated.total;
  while (left > block.size()) {
    co_await Put(block);
    left -= block.size();
  }
  // The last block takes the end along, so that the end is not a piece of its own.
  const std::string last = block.substr(0, left) + repeated.end;
  co_await Put(last);
}

asio::awaitable<void> Player::Do(const Echo& echo) {
  const std::string reply = std::string(command_) + echo.end;
  co_await Put(reply);
}

asio::awaitable<void> Player::Do(const Flood& flood) {
  const std::string block = BlockOf(kFloodPattern, kBlockLength);
  const std::size_t taken = co_await carrier_.SendEndlessly(block, flood.length);
  Count(block, taken);
}

asio::awaitable<void> Player::Do(const Wait& wait) {
  co_await carrier_.Pause(wait.length);
}

asio::awaitable<void> Player::Do(const HoldForNext& /*hold*/) {
  co_return;
}

asio::awaitable<void> Player::Do(const Ending& ending) {
  carrier_.End(ending);
  state_ = ending == Ending::kClose ? LineState::kClosed : LineState::kReset;
  co_return;
}

asio::awaitable<void> Player::Put(std::string_view bytes) {
  if (holding_) {
    held_ += bytes;
    co_return;
  }
  if (held_.empty()) {
    if (bytes.empty()) co_return;
    co_await carrier_.Send(bytes);
    Count(bytes, bytes.size());
    co_return;
  }
  std::string merged;
  merged.swap(held_);
  merged += bytes;
  co_await carrier_.Send(merged);
  Count(merged, merged.size());
}

void Player::Count(std::string_view bytes, std::size_t total) {
  const std::size_t room = kHeadLength - std::min(kHeadLength, sent_.head.size());
  sent_.head += bytes.substr(0, std::min(room, total));
  sent_.bytes += total;
  sent_.pieces += 1;
}

}  // namespace kesp::simulator
