// A network transport, by itself or in a communication object, and the peer that it talks to.
#pragma once

#include <memory>
#include <string>

#include "tests/hangs/hanging_peer.h"
#include "tests/hangs/stage.h"

namespace kesp::hangs {

// Of every wait of a TCP transport on this stage: TimeOutmSecs is 1000.
inline constexpr short kTcpTimeOut = 1000;
inline constexpr Milliseconds kTcpWait{2000};
// Longer than any pause of a peer on a busy machine.
inline constexpr long kQuietGap = 500;

class TcpStage final : public Stage {
 public:
  explicit TcpStage(const std::string& address = "127.0.0.1", int port = 0);
  // Before the peer.
  ~TcpStage() override { ReleaseAll(); }

  Outcome Initialize();
  Outcome Uninitialize();
  Outcome WriteLine(const std::string& cmd) override;
  Outcome ReadLine() override;
  Outcome ReadLineBinary(long gap = kQuietGap);
  // Asks with *IDN? only.
  Outcome AutoDetect();
  // The transport is told to go to this host.
  void PointAt(const std::string& address);
  void EndRepliesByEos(bool by_eos);

  HangingPeer peer;
  clients::ComPtr<_CKespTCP> tcp = Transport<_CKespTCP>();

 private:
  void ReleaseTransport() override { tcp.Reset(); }
};

}  // namespace kesp::hangs
