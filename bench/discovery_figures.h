// What one discovery came to, the library's or a bare one.
#pragma once

#include <windows.h>

#include <cstddef>

namespace kesp::bench {

// What a discovery is to find.
struct Senders {
  std::size_t count;
  // How often each answers.
  std::size_t answers = 1;
  // What the receiver sleeps at the first answer. Meanwhile all others arrive and wait in the system, so that
  // receiving them waits for nobody.
  DWORD pause_ms = 0;

  std::size_t Datagrams() const { return count * answers; }
};

// Times are in microseconds.
struct DiscoveryFigures {
  // Different senders that were heard, and those of them that said who they are.
  std::size_t heard = 0;
  std::size_t identified = 0;
  // From the first answer, after its pause, to the last: for each answer but the first.
  double receiving = 0;
  // Of that, inside the library's handling of an answer. None for a bare discovery.
  double handling = 0;
  // Connecting, asking, reading and closing, for each sender.
  double asking = 0;
  // Everything, from the first call to the last.
  double whole = 0;
};

}  // namespace kesp::bench
