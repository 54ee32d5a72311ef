// A communication object that talks to the instrument on the network.
#pragma once

#include "tests/faults/transport_scenario.h"

namespace kesp::faults {

inline constexpr wchar_t kTcpIdentity[] = L"KESP,TORTURE,SIM00666,1.0";

struct TcpStage {
  using Transport = _CKespTCP;
  static constexpr ECommStyle kStyle = csTCPIP;
  static constexpr EDetectLevel kDetectedBy = dlSCPIOnly;
  static constexpr const wchar_t* kDetected = kTcpIdentity;
  static constexpr const wchar_t* kReplyEnd = L"";

  // At the instrument of the environment.
  static bool Point(_CKespTCP* tcp, Verdict& verdict);
  static IID Events() { return __uuidof(__CKespTCP); }
  static HRESULT Open(_CKespTCP* tcp, VARIANT_BOOL* answer) { return tcp->Initialize(answer); }
  static HRESULT Close(_CKespTCP* tcp, VARIANT_BOOL* answer) { return tcp->Uninitialize(answer); }
  static HRESULT Write(_CKespTCP* tcp, BSTR command, VARIANT_BOOL* answer) {
    return tcp->WriteLine(command, answer);
  }
  static void Recover(_CKespCommObj*, _CKespTCP*, Verdict&) {}
  static void LookAfterwards(Verdict&) {}
};

using TcpScenario = TransportScenario<TcpStage>;

}  // namespace kesp::faults
