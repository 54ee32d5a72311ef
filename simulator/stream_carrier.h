// What the carriers over the system's streams of bytes do alike.
#pragma once

#include <asio/awaitable.hpp>
#include <asio/buffer.hpp>
#include <asio/error.hpp>
#include <asio/redirect_error.hpp>
#include <asio/steady_timer.hpp>
#include <asio/use_awaitable.hpp>
#include <asio/write.hpp>
#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "simulator/carrier.h"

namespace kesp::simulator {

// Owns a socket, descriptor or port of Asio's.
template <typename Stream>
class StreamCarrier : public Carrier {
 public:
  asio::awaitable<Arrival> Receive(std::chrono::milliseconds patience) override;

  asio::awaitable<void> Send(std::string_view bytes) override {
    co_await asio::async_write(stream_, asio::buffer(bytes), asio::use_awaitable);
  }

  asio::awaitable<std::size_t> SendEndlessly(std::string_view block,
                                             std::chrono::milliseconds length) override;

  asio::awaitable<void> Pause(std::chrono::milliseconds length) override {
    asio::steady_timer timer(stream_.get_executor(), length);
    co_await timer.async_wait(asio::use_awaitable);
  }

 protected:
  // room: how many bytes it receives at once.
  StreamCarrier(Stream stream, std::size_t room) : stream_(std::move(stream)), input_(room) {}

  Stream stream_;
  std::vector<char> input_;

 private:
  // Has the timer cancel what the stream does after that time, and says by the flag that it did. The flag is
  // shared with the timer's handler, which may still be waiting for its turn when whoever set it is gone.
  std::shared_ptr<const bool> CancelAfter(std::chrono::milliseconds length, asio::steady_timer& timer);
};

template <typename Stream>
std::shared_ptr<const bool> StreamCarrier<Stream>::CancelAfter(std::chrono::milliseconds length,
                                                               asio::steady_timer& timer) {
  const auto time_is_up = std::make_shared<bool>(false);
  timer.expires_after(length);
  timer.async_wait([this, watched = std::weak_ptr<bool>(time_is_up)](const asio::error_code& error) {
    const std::shared_ptr<bool> flag = watched.lock();
    if (error || !flag) return;
    *flag = true;
    asio::error_code ignored;
    stream_.cancel(ignored);
  });
  return time_is_up;
}

template <typename Stream>
asio::awaitable<Arrival> StreamCarrier<Stream>::Receive(std::chrono::milliseconds patience) {
  asio::steady_timer timer(stream_.get_executor());
  std::shared_ptr<const bool> time_is_up;
  if (patience != kForever) time_is_up = CancelAfter(patience, timer);
  asio::error_code error;
  const std::size_t count = co_await stream_.async_read_some(
      asio::buffer(input_), asio::redirect_error(asio::use_awaitable, error));
  // On Windows a read that is cancelled may have taken bytes.
  if (error && count > 0) error.clear();
  const bool nothing_came = time_is_up && *time_is_up && error == asio::error::operation_aborted;
  if (nothing_came) co_return Arrival{Arrived::kNothing, {}};
  if (error == asio::error::eof) co_return Arrival{Arrived::kEnd, {}};
  if (error) throw asio::system_error(error);
  co_return Arrival{Arrived::kBytes, std::string(input_.data(), count)};
}

template <typename Stream>
asio::awaitable<std::size_t> StreamCarrier<Stream>::SendEndlessly(std::string_view block,
                                                                  std::chrono::milliseconds length) {
  asio::steady_timer timer(stream_.get_executor());
  // A client that stays and does not read would hold up a write past the end.
  const std::shared_ptr<const bool> time_is_up = CancelAfter(length, timer);
  std::size_t total = 0;
  for (asio::error_code error; !*time_is_up && !error;) {
    const std::string_view rest = block.substr(total % block.size(), input_.size());
    total += co_await stream_.async_write_some(asio::buffer(rest),
                                               asio::redirect_error(asio::use_awaitable, error));
  }
  co_return total;
}

}  // namespace kesp::simulator
