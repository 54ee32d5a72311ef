// The simulated instrument itself: a personality and what it remembers between commands.
#include "simulator/instrument.h"

#include <utility>

namespace kesp::simulator {

Instrument::Instrument(Personality personality) : personality_(std::move(personality)) {}

const ActionList& Instrument::Connected() {
  return NextTurn(personality_.on_connect.turns);
}

const DiscoveryList& Instrument::Discovered() {
  return NextTurn(personality_.discovery.turns);
}

const ActionList& Instrument::Command(std::string_view command) {
  return NextTurn(Find(command).turns);
}

const Answer& Instrument::Find(std::string_view command) const {
  const auto exact = personality_.commands.find(command);
  if (exact != personality_.commands.end()) return exact->second;

  const Answer* longest = nullptr;
  std::size_t length = 0;
  for (const auto& [prefix, answer] : personality_.prefixes) {
    if (command.substr(0, prefix.size()) != prefix) continue;
    if (longest != nullptr && prefix.size() <= length) continue;
    longest = &answer;
    length = prefix.size();
  }
  if (longest != nullptr) return *longest;
  const bool query = !command.empty() && command.back() == '?';
  return query && personality_.unknown_query ? *personality_.unknown_query : personality_.unknown;
}

}  // namespace kesp::simulator
