// A communication object that talks to the controller at a COM port.
#pragma once

#include "tests/faults/transport_scenario.h"

namespace kesp::faults {

inline constexpr wchar_t kSerialIdentity[] = L"KESP,SC300,SIM30118,1.4";

struct SerialStage {
  using Transport = _CKespCOMPort3;
  static constexpr ECommStyle kStyle = csRS232;
  static constexpr EDetectLevel kDetectedBy = dlSCPIOnly;
  static constexpr const wchar_t* kDetected = kSerialIdentity;
  static constexpr const wchar_t* kReplyEnd = L"";

  // At the port of the environment, with one rate, so that a search is short.
  static bool Point(_CKespCOMPort3* port, Verdict& verdict);
  // What arrived of a reply that was given up is kept for the next reading; a client empties the line so.
  static void Recover(_CKespCommObj* comm, _CKespCOMPort3* port, Verdict& verdict);
  static void LookAfterwards(Verdict&) {}

  static IID Events() { return __uuidof(__CKespCOMPort3); }
  static HRESULT Open(_CKespCOMPort3* port, VARIANT_BOOL* answer) { return port->OpenPort(answer); }
  // It has no answer.
  static HRESULT Close(_CKespCOMPort3* port, VARIANT_BOOL* answer) {
    *answer = VARIANT_TRUE;
    return port->ClosePort();
  }
  static HRESULT Write(_CKespCOMPort3* port, BSTR command, VARIANT_BOOL* answer) {
    return port->WriteLine(command, nullptr, nullptr, VARIANT_FALSE, answer);
  }
};

using SerialScenario = TransportScenario<SerialStage>;

}  // namespace kesp::faults
