// Where the instrument on the network is.
#include "tests/faults/tcp_stage.h"

namespace kesp::faults {

bool TcpStage::Point(_CKespTCP* tcp, Verdict& verdict) {
  constexpr short kTimeOut = 1500;
  const Text host(Setting("KESP_INSTRUMENT_HOST"));
  const auto port = static_cast<short>(std::stoi(Setting("KESP_INSTRUMENT_PORT")));
  return verdict.Succeeded(tcp->put_Protocol(sckTCPProtocol), "Protocol") &&
         verdict.Succeeded(tcp->put_IPAddress(host.get()), "IPAddress") &&
         verdict.Succeeded(tcp->put_Port(port), "Port") &&
         verdict.Succeeded(tcp->put_TimeOutmSecs(kTimeOut), "TimeOutmSecs");
}

}  // namespace kesp::faults
