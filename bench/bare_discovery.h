// The bare Winsock discovery that the library is measured against.
#pragma once

#include "bench/discovery_figures.h"

namespace kesp::bench {

// How a bare discovery waits for the next answer.
enum class BareWait {
  // recvfrom waits itself: the fastest way there is.
  kInReceive,
  // The system posts a message to a window for each answer, which is polled for without a pause, as the
  // library
  // does it.
  kForMessages,
};

// Sends the broadcast and receives until all answers are there or two seconds pass without one; then asks the
// senders who they are, from the last to the first, with blocking calls. Throws std::runtime_error when a
// call fails.
DiscoveryFigures DiscoverBare(const Senders& senders, BareWait wait);

}  // namespace kesp::bench
