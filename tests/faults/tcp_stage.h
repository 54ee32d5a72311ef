// A communication object that talks to the instrument on the network.
#pragma once

#include "tests/faults/transport_scenario.h"

namespace kesp::faults {

inline constexpr wchar_t kTcpIdentity[] = L"KESP,TORTURE,SIM00666,1.0";

struct TcpStage {
  using Transport = _CKespTCP;
  static constexpr ECommStyle kStyle = csTCPIP;
  static constexpr const wchar_t* kIdentity = kTcpIdentity;
  static constexpr EDetectLevel kDetectedBy = dlSCPIOnly;
  static constexpr const wchar_t* kDetected = kTcpIdentity;

  // At the instrument of the environment.
  static bool Point(_CKespTCP* tcp, Verdict& verdict);
  static void Recover(_CKespCommObj*, _CKespTCP*, Verdict&) {}
  static void LookAfterwards(Verdict&) {}
};

using TcpScenario = TransportScenario<TcpStage>;

}  // namespace kesp::faults
