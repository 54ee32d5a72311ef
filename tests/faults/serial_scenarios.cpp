// Queries and searches at a COM port.
#include "tests/faults/scenarios.h"
#include "tests/faults/serial_stage.h"

namespace kesp::faults {

namespace {

class SerialQuery : public SerialScenario {
 public:
  void Run(Verdict& verdict) override {
    if (!Begin(verdict)) return;
    if (!QueryGives(comm_.Get(), L"*IDN?", kSerialIdentity, verdict)) return;
    // And with the port left open.
    if (!verdict.Succeeded(comm_->put_AutoClose(VARIANT_FALSE), "AutoClose")) return;
    if (!QueryGives(comm_.Get(), L"*IDN?", kSerialIdentity, verdict)) return;
    QueryGives(comm_.Get(), L"*IDN?", kSerialIdentity, verdict);
  }
};

class SerialBinary : public SerialScenario {
 public:
  void Run(Verdict& verdict) override {
    if (!Begin(verdict)) return;
    if (!verdict.Succeeded(comm_->SetInputMode(imBinary), "SetInputMode")) return;
    QueryBinaryGives(comm_.Get(), L"*IDN?", "KESP,SC300,SIM30118,1.4\r\n", verdict);
    verdict.Succeeded(comm_->SetInputMode(imText), "SetInputMode");
  }
  void WorkAgain(Verdict& verdict) override {
    if (comm_ == nullptr) return;
    if (transport_ != nullptr) verdict.Succeeded(comm_->SetInputMode(imText), "SetInputMode");
    SerialScenario::WorkAgain(verdict);
  }
};

// A port that is not there, with the log of the transport.
class SerialNobody : public SerialScenario {
 public:
  void Run(Verdict& verdict) override {
    if (!Begin(verdict)) return;
    constexpr short kMissingPort = 250;
    if (!verdict.Succeeded(transport_->put_Port(kMissingPort), "Port")) return;
    if (!verdict.Succeeded(transport_->put_CreateLogFile(VARIANT_TRUE), "CreateLogFile")) return;
    VARIANT_BOOL is_there = VARIANT_TRUE;
    verdict.Succeeded(transport_->PortExists(kMissingPort, &is_there), "PortExists");
    Text reply;
    VARIANT_BOOL answer = VARIANT_FALSE;
    verdict.Succeeded(comm_->Query(reply.in_out(), Text(L"*IDN?").get(), nullptr, nullptr, &answer), "Query");
    verdict.Expect(answer != VARIANT_TRUE, "Query succeeds without a port");
  }
};

}  // namespace

std::unique_ptr<Scenario> MakeSerialQuery() {
  return std::make_unique<SerialQuery>();
}
std::unique_ptr<Scenario> MakeSerialBinary() {
  return std::make_unique<SerialBinary>();
}
std::unique_ptr<Scenario> MakeSerialDetection() {
  return std::make_unique<DetectionScenario<SerialStage>>();
}
std::unique_ptr<Scenario> MakeSerialNobody() {
  return std::make_unique<SerialNobody>();
}

}  // namespace kesp::faults
