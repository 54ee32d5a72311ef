// How the simulated instrument answers a discovery datagram.
#include "simulator/discovery_answer.h"

namespace kesp::simulator {

DiscoveryAnswer UsualDiscoveryAnswer() {
  using namespace std::string_literals;
  DiscoveryAnswer answer;
  answer.turns = {{Datagram{"\0\0\0\xF7"s + "KESP simulated instrument\0"s}}};
  return answer;
}

}  // namespace kesp::simulator
