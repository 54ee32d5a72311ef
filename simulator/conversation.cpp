// The conversation of the instrument with one client, whatever carries it.
#include "simulator/conversation.h"

#include <optional>
#include <system_error>
#include <utility>

#include "simulator/bytes_text.h"

namespace kesp::simulator {
Conversation::Conversation(Carrier& carrier, Instrument& instrument, EventLog& log, unsigned number)
    : carrier_(carrier),
      instrument_(instrument),
      log_(log),
      number_(number),
      framer_(instrument.terminator()),
      player_(carrier),
      line_log_(carrier, log, number) {}

asio::awaitable<void> Conversation::Run() {
  log_.Line(number_, carrier_.Opening());
  try {
    co_await Talk();
  } catch (const std::system_error& error) {
    LogSent(" before the client was gone");
    log_.Line(number_, "client gone: " + error.code().message());
  }
}

asio::awaitable<void> Conversation::Talk() {
  if (!co_await Play(instrument_.Connected(), std::string())) co_return;
  for (;;) {
    const Arrival arrival = co_await carrier_.Receive(line_log_.patience());
    if (arrival.what == Arrived::kEnd) {
      log_.Line(number_, "closed by the client");
      co_return;
    }
    if (arrival.what == Arrived::kNothing) {
      line_log_.Write();
      continue;
    }
    line_log_.Add(arrival.bytes);
    if (!LineSuits()) {
      co_await AnswerGarbled();
      continue;
    }
    framer_.Add(arrival.bytes);
    if (!co_await AnswerCommands()) co_return;
    if (framer_.TooLong()) {
      log_.Line(number_, "reset: command without an end");
      carrier_.End(Ending::kReset);
      co_return;
    }
  }
}

asio::awaitable<bool> Conversation::AnswerCommands() {
  for (std::optional<std::string> command = framer_.Next(); command; command = framer_.Next()) {
    line_log_.Write();
    if (log_.on()) log_.Line(number_, "command " + Quoted(*command));
    const ActionList& actions = instrument_.Command(*command);
    if (!co_await Play(actions, std::move(*command))) co_return false;
  }
  co_return true;
}

bool Conversation::LineSuits() const {
  const std::optional<LineSettings> line = carrier_.Line();
  return !line || !instrument_.line() || Suits(*instrument_.line(), *line);
}

asio::awaitable<void> Conversation::AnswerGarbled() {
  line_log_.Write();
  log_.Line(number_, "garbled: the instrument's line is " + TextOf(*instrument_.line()));
  co_await carrier_.Send(kGarbage);
}

asio::awaitable<bool> Conversation::Play(const ActionList& actions, std::string command) {
  const LineState state = co_await player_.Play(actions, command);
  LogSent("");
  if (player_.held_bytes() > 0)
    log_.Line(number_, Counted(player_.held_bytes(), "byte") + " held back for the next reply");
  if (state == LineState::kClosed) log_.Line(number_, "closed by the instrument");
  if (state == LineState::kReset) log_.Line(number_, "reset by the instrument");
  co_return state == LineState::kOpen;
}

void Conversation::LogSent(const std::string& suffix) {
  const Sent sent = player_.TakeSent();
  if (!log_.on() || sent.pieces == 0) return;
  log_.Line(number_, "reply " + Quoted(sent.head) + " (" + Counted(sent.bytes, "byte") + ", " +
                         Counted(sent.pieces, "piece") + ")" + suffix);
}

}  // namespace kesp::simulator
