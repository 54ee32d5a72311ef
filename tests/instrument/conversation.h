// The conversation of the instrument with one client, whatever carries it.
#pragma once

#include <asio/awaitable.hpp>
#include <string>

#include "tests/instrument/carrier.h"
#include "tests/instrument/command_framer.h"
#include "tests/instrument/event_log.h"
#include "tests/instrument/instrument.h"
#include "tests/instrument/player.h"

namespace kesp::simulator {

// Greets a client, answers its commands one after the other in the order they came, and logs each connection,
// command and reply. All that is handed in must outlive it.
class Conversation {
 public:
  // number is the connection's number in the log.
  Conversation(Carrier& carrier, Instrument& instrument, EventLog& log, unsigned number);

  // Talks until either side ends the line; a client that is gone is a line in the log and no error.
  asio::awaitable<void> Run();

 private:
  asio::awaitable<void> Talk();
  asio::awaitable<bool> AnswerCommands();
  asio::awaitable<bool> Play(const ActionList& actions, std::string command);
  void LogSent(const std::string& suffix);

  Carrier& carrier_;
  Instrument& instrument_;
  EventLog& log_;
  const unsigned number_;
  CommandFramer framer_;
  Player player_;
};

}  // namespace kesp::simulator
