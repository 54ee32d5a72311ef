// What carriers over the system's streams of bytes do alike.
#pragma once

#include <algorithm>
#include <asio/awaitable.hpp>
#include <asio/buffer.hpp>
#include <asio/error.hpp>
#include <asio/redirect_error.hpp>
#include <asio/steady_timer.hpp>
#include <asio/use_awaitable.hpp>
#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/carrier.h"

namespace kesp::simulator {

// Carrier::Receive on a socket or descriptor of Asio's; `input` is the room for it. All must outlive the
// call.
template <typename Stream>
asio::awaitable<Arrival> ReceiveFrom(Stream& stream, std::vector<char>& input,
                                     std::chrono::milliseconds patience) {
  asio::steady_timer timer(stream.get_executor());
  // Shared with the timer's handler, which may still be waiting for its turn when this call is over.
  const auto time_is_up = std::make_shared<bool>(false);
  if (patience != kForever) {
    timer.expires_after(patience);
    timer.async_wait([&stream, watched = std::weak_ptr<bool>(time_is_up)](const asio::error_code& error) {
      const std::shared_ptr<bool> flag = watched.lock();
      if (error || !flag) return;
      *flag = true;
      asio::error_code ignored;
      stream.cancel(ignored);
    });
  }
  asio::error_code error;
  const std::size_t count =
      co_await stream.async_read_some(asio::buffer(input), asio::redirect_error(asio::use_awaitable, error));
  // On Windows a read that is cancelled may have taken bytes.
  if (error && count > 0) error.clear();
  if (*time_is_up && error == asio::error::operation_aborted) co_return Arrival{Arrived::kNothing, {}};
  if (error == asio::error::eof) co_return Arrival{Arrived::kEnd, {}};
  if (error) throw asio::system_error(error);
  co_return Arrival{Arrived::kBytes, std::string(input.data(), count)};
}

// Carrier::SendEndlessly on a socket or descriptor of Asio's.
template <typename Stream>
asio::awaitable<std::size_t> SendEndlesslyTo(Stream& stream, std::string_view block,
                                             std::chrono::milliseconds length) {
  // Polled, because a client that stays and does not read would block a plain write past the deadline.
  asio::steady_timer timer(stream.get_executor());
  const auto deadline = std::chrono::steady_clock::now() + length;
  stream.non_blocking(true);
  std::size_t total = 0;
  while (std::chrono::steady_clock::now() < deadline) {
    asio::error_code error;
    total += stream.write_some(asio::buffer(block.substr(total % block.size())), error);
    if (error && error != asio::error::would_block) break;
    // Either way the other clients get their turn.
    timer.expires_after(std::chrono::milliseconds(error ? 1 : 0));
    co_await timer.async_wait(asio::use_awaitable);
  }
  co_return total;
}

}  // namespace kesp::simulator
