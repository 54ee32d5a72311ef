// The conversation of the instrument with one client, whatever carries it.
#pragma once

#include <asio/awaitable.hpp>
#include <string>

#include "simulator/carrier.h"
#include "simulator/command_framer.h"
#include "simulator/event_log.h"
#include "simulator/instrument.h"
#include "simulator/line_log.h"
#include "simulator/player.h"
#include "simulator/talk.h"

namespace kesp::simulator {

// Greets a client, answers its commands one after the other in the order they came, and logs each connection,
// command and reply. On a serial line with other settings than the instrument's own, what comes is not
// understood and answered with garbage. All that is handed in must outlive it.
class Conversation : public Talk {
 public:
  // number is the connection's number in the log.
  Conversation(Carrier& carrier, Instrument& instrument, EventLog& log, unsigned number);

  asio::awaitable<void> Run() override;
  void Finish() override { line_log_.Finish(); }

 private:
  asio::awaitable<void> Talk();
  asio::awaitable<bool> AnswerCommands();
  bool LineSuits() const;
  asio::awaitable<void> AnswerGarbled();
  asio::awaitable<bool> Play(const ActionList& actions, std::string command);
  void LogSent(const std::string& suffix);

  Carrier& carrier_;
  Instrument& instrument_;
  EventLog& log_;
  const unsigned number_;
  CommandFramer framer_;
  Player player_;
  LineLog line_log_;
};

}  // namespace kesp::simulator
