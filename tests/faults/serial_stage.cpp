// Where the COM port is, and how it is emptied.
#include "tests/faults/serial_stage.h"

namespace kesp::faults {

bool SerialStage::Point(_CKespCOMPort3* port, Verdict& verdict) {
  constexpr long kTimeOut = 1000;
  const auto number = static_cast<short>(std::stoi(Setting("KESP_SERIAL_PORT")));
  return verdict.Succeeded(port->put_Port(number), "Port") &&
         verdict.Succeeded(port->put_MaxBaudRate(br921600), "MaxBaudRate") &&
         verdict.Succeeded(port->put_MinBaudRate(br150), "MinBaudRate") &&
         verdict.Succeeded(port->put_BaudRate(br9600), "BaudRate") &&
         verdict.Succeeded(port->put_MinBaudRate(br9600), "MinBaudRate") &&
         verdict.Succeeded(port->put_MaxBaudRate(br9600), "MaxBaudRate") &&
         verdict.Succeeded(port->put_TimeOut(kTimeOut), "TimeOut");
}

void SerialStage::Recover(_CKespCommObj* comm, _CKespCOMPort3* port, Verdict& verdict) {
  verdict.Succeeded(comm->put_AutoClose(VARIANT_TRUE), "AutoClose");
  VARIANT_BOOL answer = kUnset;
  if (!verdict.Answered(port->OpenPort(&answer), answer, "OpenPort")) return;
  constexpr DWORD kLongestReplyMs = 100;
  Sleep(kLongestReplyMs);
  verdict.Succeeded(port->ClearBuffers(), "ClearBuffers");
  verdict.Succeeded(port->ClosePort(), "ClosePort");
}

}  // namespace kesp::faults
