// A port for datagrams that keeps a record of what is done to it.
#pragma once

#include <asio/steady_timer.hpp>
#include <asio/this_coro.hpp>
#include <asio/use_awaitable.hpp>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "simulator/bytes_text.h"
#include "simulator/datagram_port.h"

namespace kesp::simulator {

class DatagramPortFake : public DatagramPort {
 public:
  // What Receive returns, one after the other; then it waits for ever.
  std::deque<ReceivedDatagram> input;
  // One entry for each call but Receive: "10.0.0.1 \"text\"" with the address the datagram was sent from ("-"
  // for one of the system's choice), or "pause 5".
  std::vector<std::string> record;
  // Where each datagram went.
  std::vector<asio::ip::udp::endpoint> destinations;
  // What the n-th call of Send, counted from 0, reports; unset: no error.
  std::function<std::error_code(std::size_t)> error_of;

  asio::awaitable<ReceivedDatagram> Receive() override {
    if (input.empty()) {
      asio::steady_timer never(co_await asio::this_coro::executor, asio::steady_timer::time_point::max());
      co_await never.async_wait(asio::use_awaitable);
    }
    ReceivedDatagram received = input.front();
    input.pop_front();
    co_return received;
  }

  asio::awaitable<std::error_code> Send(std::string_view bytes, asio::ip::udp::endpoint to,
                                        std::optional<asio::ip::address_v4> from) override {
    const std::size_t number = destinations.size();
    record.push_back((from ? from->to_string() : "-") + " " + Quoted(bytes));
    destinations.push_back(to);
    co_return error_of ? error_of(number) : std::error_code();
  }

  asio::awaitable<void> Pause(std::chrono::milliseconds length) override {
    record.push_back("pause " + std::to_string(length.count()));
    co_return;
  }
};

}  // namespace kesp::simulator
