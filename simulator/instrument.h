// The simulated instrument itself: a personality and what it remembers between commands.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string_view>
#include <vector>

#include "simulator/personality.h"

namespace kesp::simulator {

// One instrument, which may have many clients at once; answers given in turn go round for all of them
// together, because a client may connect anew for every command. Used by one thread. Owned by the program.
class Instrument {
 public:
  explicit Instrument(Personality personality);
  Instrument(const Instrument&) = delete;
  Instrument& operator=(const Instrument&) = delete;

  std::string_view terminator() const { return personality_.terminator; }
  // The settings of a serial line at which it understands its client; nothing: all.
  const std::optional<LineRule>& line() const { return personality_.line; }

  // What to do for a new client. The lists live as long as the instrument.
  const ActionList& Connected();

  // What to do for a discovery datagram.
  const DiscoveryList& Discovered();

  // What to do for this command, given without its terminator. An exact name counts before the longest name
  // that ends in "*", and both before the answers to unknown commands.
  const ActionList& Command(std::string_view command);

 private:
  const Answer& Find(std::string_view command) const;
  // The list whose turn it is; kept apart for each of the personality's answers.
  template <typename List>
  const List& NextTurn(const std::vector<List>& turns) {
    return turns[turns_taken_[&turns]++ % turns.size()];
  }

  const Personality personality_;
  std::map<const void*, std::size_t> turns_taken_;
};

}  // namespace kesp::simulator
