// Making and pointing the object.
#include "tests/faults/tcp_stage.h"

namespace kesp::faults {

namespace {

constexpr short kTimeOut = 1500;

bool Point(_CKespTCP* tcp, Verdict& verdict) {
  const Text host(Setting("KESP_INSTRUMENT_HOST"));
  const auto port = static_cast<short>(std::stoi(Setting("KESP_INSTRUMENT_PORT")));
  return verdict.Succeeded(tcp->put_IPAddress(host.get()), "IPAddress") &&
         verdict.Succeeded(tcp->put_Port(port), "Port") &&
         verdict.Succeeded(tcp->put_TimeOutmSecs(kTimeOut), "TimeOutmSecs");
}

}  // namespace

void TcpScenario::WorkAgain(Verdict& verdict) {
  if (comm_ == nullptr) return;
  tcp_ = Use<_CKespTCP>(comm_.Get(), csTCPIP, verdict);
  verdict.Expect(tcp_ != nullptr, "there is no transport");
  if (tcp_ == nullptr || !Point(tcp_.Get(), verdict)) return;
  MustQuery(comm_.Get(), L"*IDN?", kTcpIdentity, verdict);
}

bool TcpScenario::Begin(Verdict& verdict) {
  comm_ = Make<_CKespCommObj>(__uuidof(CKespCommObj), verdict);
  if (comm_ != nullptr) tcp_ = Use<_CKespTCP>(comm_.Get(), csTCPIP, verdict);
  return tcp_ != nullptr && Point(tcp_.Get(), verdict);
}

}  // namespace kesp::faults
