// A communication object that talks to the controller at the COM port of the environment.
#pragma once

#include "tests/faults/client.h"
#include "tests/faults/scenario.h"

namespace kesp::faults {

inline constexpr wchar_t kSerialIdentity[] = L"KESP,SC300,SIM30118,1.4";

class SerialScenario : public Scenario {
 public:
  void WorkAgain(Verdict& verdict) override;

 protected:
  bool Begin(Verdict& verdict);
  // At the port of the environment, with one rate, so that a search is short.
  static bool Point(_CKespCOMPort3* port, Verdict& verdict);

  ComPtr<_CKespCommObj> comm_;
  ComPtr<_CKespCOMPort3> port_;

 private:
  void EmptyLine(Verdict& verdict) const;
};

}  // namespace kesp::faults
