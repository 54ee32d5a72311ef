// Carries out the schedules of actions on a carrier.
#pragma once

#include <asio/awaitable.hpp>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "simulator/action.h"
#include "simulator/carrier.h"
#include "simulator/schedule.h"

namespace kesp::simulator {

// What was sent for one list of actions.
struct Sent {
  std::string head;  // the first bytes, more of them than a log quotes
  std::size_t bytes = 0;
  std::size_t pieces = 0;
};

enum class LineState { kOpen, kClosed, kReset };

// Plays actions to one client and keeps, between lists, the bytes that are held back for the next reply.
// Belongs to the conversation with that client, like the carrier, which must outlive it.
class Player {
 public:
  explicit Player(Carrier& carrier) : carrier_(carrier) {}

  // Carries out the actions in order, up to the first that ends the line. `command` is what "echo" sends.
  // Both must live until the end. Throws std::system_error when the client is gone; TakeSent then tells how
  // far it came.
  asio::awaitable<LineState> Play(const ActionList& actions, std::string_view command);

  // What went out since the last call of TakeSent.
  Sent TakeSent() { return std::exchange(sent_, Sent{}); }
  // How many bytes are held back for the next reply.
  std::size_t held_bytes() const { return held_.size(); }

 private:
  asio::awaitable<void> Do(const Step& step);
  void Count(std::string_view bytes, std::size_t total);

  Carrier& carrier_;
  std::string held_;
  Sent sent_;
};

}  // namespace kesp::simulator
