// How the simulated instrument answers a discovery datagram.
#pragma once

#include <cstddef>
#include <string>
#include <variant>
#include <vector>

#include "simulator/action.h"

namespace kesp::simulator {

// The most that an IPv4 datagram carries over UDP.
inline constexpr std::size_t kLongestDatagram = 65'507;

// One datagram, sent once from each address of the instrument.
struct Datagram {
  std::string bytes;
};

// So many datagrams, these in turn, each from the next address of the instrument. Never without one.
struct Storm {
  std::vector<Datagram> datagrams;
  std::size_t count = 0;
};

using DiscoveryAction = std::variant<Datagram, Storm, Wait>;
using DiscoveryList = std::vector<DiscoveryAction>;

// The lists that discovery datagrams are answered with in turn; the first follows the last. Never without a
// list; one empty list is no answer at all.
struct DiscoveryAnswer {
  std::vector<DiscoveryList> turns = std::vector<DiscoveryList>(1);
};

// The answer of a personality that does not give one: a single datagram of 30 bytes that holds F7.
DiscoveryAnswer UsualDiscoveryAnswer();

}  // namespace kesp::simulator
