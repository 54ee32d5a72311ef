// What a peer over TCP can do in place of answering a command.
#pragma once

#include <string>
#include <vector>

#include "tests/hangs/hanging_peer.h"

namespace kesp::hangs {

// What a read may come to.
enum class Ends { kReply, kTimeOut, kNoConnection, kOverrun, kInvalid };

// What completes a reply for a read.
enum class Reads { kToEos, kAnyArrival, kBytesToEos, kBytesToGap };

struct TcpWay {
  std::string name;
  HangingPeer::Way behaviour;
  // For each of Reads, in that order.
  std::vector<Ends> ends[4] = {};
  // Whether a reply that it brings is the command's whole one.
  bool has_reply = true;
  // How long after the command it sends something that is stale by then.
  Milliseconds late{0};
};

// Those that begin when a command has come.
std::vector<TcpWay> TcpReadingWays();

// Those in which a peer may be while a connection is used otherwise.
std::vector<TcpWay> TcpConnectionWays();

}  // namespace kesp::hangs
