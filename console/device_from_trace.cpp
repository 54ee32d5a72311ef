// Makes a description for the simulator of the exchanges in a trace.
#include "console/device_from_trace.h"

#include <algorithm>
#include <stdexcept>

#include "console/device_text.h"

namespace kesp::console {
namespace {

constexpr std::size_t kMostCommands = 10'000;

std::string Counted(std::size_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string NameOf(const HeardInstrument& instrument) {
  return instrument.settings.empty() ? instrument.place : instrument.place + "@" + instrument.settings;
}

bool IsOnBus(const Exchange& exchange) {
  return exchange.place == "gpib";
}

// Without the ends that the client wrote behind it, for the instrument hears nothing of its own in them. On
// the bus a carriage return before the end does not count.
std::string WithoutEnds(const std::string& command, const Exchange& exchange) {
  const std::size_t text_end = command.find_last_not_of("\r\n") + 1;
  return command.substr(0, IsOnBus(exchange) ? text_end : command.find('\r', text_end));
}

// What the instrument hears as the command; nothing where there is none.
std::optional<std::string> CommandOf(const Exchange& exchange) {
  const std::optional<std::string>& sent = exchange.frame ? exchange.frame : exchange.command;
  if (!sent || (exchange.frame && !sent->ends_with('\r'))) return std::nullopt;
  return WithoutEnds(*sent, exchange);
}

}  // namespace

void DeviceFromTrace::Add(const Exchange& exchange) {
  if (!exchange.was_sent || exchange.is_modem || exchange.place.empty()) return;
  if (!exchange.omega_address.empty()) {
    ++behind_omega_;
    return;
  }
  const std::optional<std::string> command = CommandOf(exchange);
  if (!command || command->empty()) {
    ++without_command_;
    return;
  }
  if (exchange.is_unfinished) {
    ++unfinished_;
    return;
  }
  // The instrument hears each up to its end, and nobody knows which of them was answered.
  if (command->find(IsOnBus(exchange) ? '\n' : '\r') != std::string::npos) {
    ++several_;
    return;
  }
  HeardInstrument& instrument = instruments_[exchange.place + "@" + exchange.settings];
  instrument.place = exchange.place;
  instrument.settings = exchange.settings;
  if (!instrument.answers.contains(*command)) {
    if (instrument.commands.size() == kMostCommands) {
      ++too_many_;
      return;
    }
    instrument.commands.push_back(*command);
  }
  ++instrument.exchanges;
  instrument.answers[*command].Add(exchange);
}

DeviceFromTrace::Made DeviceFromTrace::Make() const {
  const auto chosen =
      std::max_element(instruments_.begin(), instruments_.end(),
                       [](const auto& a, const auto& b) { return a.second.exchanges < b.second.exchanges; });
  if (chosen == instruments_.end()) throw std::runtime_error(WhyNone());
  const HeardInstrument& instrument = chosen->second;
  Made made;
  made.json = DeviceText(instrument, made.remarks);
  made.summary = Counted(instrument.commands.size(), "command") + " of " + NameOf(instrument) + ", from " +
                 Counted(instrument.exchanges, "exchange");
  for (const auto& [key, other] : instruments_) {
    if (key == chosen->first) continue;
    made.remarks.push_back("left out: " + Counted(other.exchanges, "exchange") + " with " + NameOf(other));
  }
  if (without_command_ > 0) {
    made.remarks.push_back("left out: " + Counted(without_command_, "exchange") +
                           " of which the trace does not tell the command");
  }
  if (unfinished_ > 0) {
    made.remarks.push_back("left out: " + Counted(unfinished_, "exchange") +
                           " of which the trace does not tell the end");
  }
  if (several_ > 0) {
    made.remarks.push_back("left out: " + Counted(several_, "exchange") + " with several commands in one");
  }
  if (behind_omega_ > 0) {
    made.remarks.push_back("left out: " + Counted(behind_omega_, "exchange") + " with block checks");
  }
  if (too_many_ > 0) {
    made.remarks.push_back("left out: " + Counted(too_many_, "exchange") + " with still other commands");
  }
  return made;
}

std::string DeviceFromTrace::WhyNone() const {
  if (behind_omega_ > 0) {
    return "the trace is of a controller with block checks; an example of such a description is what "
           "\"kesp-sim example omega-controller\" writes";
  }
  return several_ > 0 ? "the exchanges in the trace hold several commands in one, so nothing was written"
                      : "no exchange in the trace tells its command and its end, so nothing was written";
}

}  // namespace kesp::console
