// A carrier that keeps a record of what is done to it, with a clock of its own, and the means to run
// coroutines.
#pragma once

#include <gtest/gtest.h>

#include <asio/co_spawn.hpp>
#include <asio/io_context.hpp>
#include <deque>
#include <exception>
#include <system_error>
#include <utility>
#include <vector>

#include "simulator/bytes_text.h"
#include "simulator/carrier.h"

namespace kesp::simulator {

class CarrierFake : public Carrier {
 public:
  // What Receive returns, piece by piece, an empty piece for a time in which nothing came; then the client
  // has left.
  std::deque<std::string> input;
  // One entry for each call but Receive: the piece in quotes, "pause 5", "endless 10", "close", "reset".
  std::vector<std::string> record;
  // How many more pieces can be sent before the client is gone.
  std::size_t sends_left = 1'000'000;

  // A serial line when set; `rest` is what Rest returns then.
  std::optional<LineSettings> line;
  std::string rest;
  // The patience of the last Receive.
  std::chrono::milliseconds patience{0};
  // Passes by pauses, and while nothing comes.
  std::chrono::milliseconds now{0};

  std::string Opening() const override { return "connected from fake:1"; }

  asio::awaitable<Arrival> Receive(std::chrono::milliseconds how_long) override {
    patience = how_long;
    if (input.empty()) co_return Arrival{};
    std::string piece = input.front();
    input.pop_front();
    const Arrived what = piece.empty() ? Arrived::kNothing : Arrived::kBytes;
    if (piece.empty() && how_long != kForever) now += how_long;
    co_return Arrival{what, std::move(piece)};
  }

  asio::awaitable<void> Send(std::string_view bytes) override {
    if (sends_left-- == 0) throw std::system_error(std::make_error_code(std::errc::broken_pipe));
    record.push_back(Quoted(bytes));
    co_return;
  }

  asio::awaitable<std::size_t> SendEndlessly(std::string_view block,
                                             std::chrono::milliseconds length) override {
    record.push_back("endless " + std::to_string(length.count()));
    co_return block.size();
  }

  asio::awaitable<void> Pause(std::chrono::milliseconds length) override {
    record.push_back("pause " + std::to_string(length.count()));
    now += length;
    co_return;
  }

  std::chrono::steady_clock::duration Now() const override { return now; }

  std::optional<LineSettings> Line() const override { return line; }
  std::string Rest() override { return rest; }

  void End(Ending ending) override { record.push_back(ending == Ending::kClose ? "close" : "reset"); }
};

// Runs the coroutine to its end and throws what it throws; a failure when that takes longer than the
// deadline.
inline void RunToEnd(asio::awaitable<void> coroutine) {
  asio::io_context io;
  std::exception_ptr failure;
  bool ended = false;
  asio::co_spawn(io, std::move(coroutine), [&](std::exception_ptr thrown) {
    failure = std::move(thrown);
    ended = true;
  });
  io.run_for(std::chrono::seconds(10));
  if (failure) std::rethrow_exception(failure);
  ASSERT_TRUE(ended) << "the coroutine did not end in time";
}

}  // namespace kesp::simulator
