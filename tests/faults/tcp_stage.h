// A communication object that talks to the instrument on the network.
#pragma once

#include "tests/faults/client.h"
#include "tests/faults/scenario.h"

namespace kesp::faults {

inline constexpr wchar_t kTcpIdentity[] = L"KESP,TORTURE,SIM00666,1.0";

// The base of the scenarios that need one.
class TcpScenario : public Scenario {
 public:
  void WorkAgain(Verdict& verdict) override;

 protected:
  // Makes the object and points it at the instrument of the environment.
  bool Begin(Verdict& verdict);

  ComPtr<_CKespCommObj> comm_;
  ComPtr<_CKespTCP> tcp_;
};

}  // namespace kesp::faults
