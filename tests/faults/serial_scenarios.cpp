// Queries and searches at a COM port.
#include "tests/faults/line_scenarios.h"
#include "tests/faults/serial_stage.h"

namespace kesp::faults {

namespace {

constexpr long kTimeOut = 1000;

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
    if (port_ != nullptr) verdict.Succeeded(comm_->SetInputMode(imText), "SetInputMode");
    SerialScenario::WorkAgain(verdict);
  }
};

class SerialDetection : public SerialScenario {
 public:
  void Run(Verdict& verdict) override {
    if (!Begin(verdict)) return;
    Text reply(L"before");
    VARIANT_BOOL found = VARIANT_FALSE;
    if (!verdict.Succeeded(comm_->DetectInstrument(reply.in_out(), dlSCPIOnly, &found), "DetectInstrument"))
      return;
    verdict.Expect(found != VARIANT_TRUE || reply.str() == kSerialIdentity,
                   "DetectInstrument gives another answer");
  }
};

// A port that is not there, with the log of the transport.
class SerialNobody : public SerialScenario {
 public:
  void Run(Verdict& verdict) override {
    if (!Begin(verdict)) return;
    constexpr short kMissingPort = 250;
    if (!verdict.Succeeded(port_->put_Port(kMissingPort), "Port")) return;
    if (!verdict.Succeeded(port_->put_CreateLogFile(VARIANT_TRUE), "CreateLogFile")) return;
    VARIANT_BOOL is_there = VARIANT_TRUE;
    verdict.Succeeded(port_->PortExists(kMissingPort, &is_there), "PortExists");
    Text reply;
    VARIANT_BOOL answer = VARIANT_FALSE;
    verdict.Succeeded(comm_->Query(reply.in_out(), Text(L"*IDN?").get(), nullptr, nullptr, &answer), "Query");
    verdict.Expect(answer != VARIANT_TRUE, "Query succeeds without a port");
  }
};

}  // namespace

bool SerialScenario::Point(_CKespCOMPort3* port, Verdict& verdict) {
  const auto number = static_cast<short>(std::stoi(Setting("KESP_SERIAL_PORT")));
  return verdict.Succeeded(port->put_Port(number), "Port") &&
         verdict.Succeeded(port->put_MaxBaudRate(br921600), "MaxBaudRate") &&
         verdict.Succeeded(port->put_MinBaudRate(br150), "MinBaudRate") &&
         verdict.Succeeded(port->put_BaudRate(br9600), "BaudRate") &&
         verdict.Succeeded(port->put_MinBaudRate(br9600), "MinBaudRate") &&
         verdict.Succeeded(port->put_MaxBaudRate(br9600), "MaxBaudRate") &&
         verdict.Succeeded(port->put_TimeOut(kTimeOut), "TimeOut");
}

// What arrived of a reply that was given up is kept for the next reading; a client empties the line so.
void SerialScenario::EmptyLine(Verdict& verdict) const {
  VARIANT_BOOL answer = VARIANT_FALSE;
  if (!verdict.Succeeded(port_->OpenPort(&answer), "OpenPort")) return;
  constexpr DWORD kLongestReplyMs = 100;
  Sleep(kLongestReplyMs);
  verdict.Succeeded(port_->ClearBuffers(), "ClearBuffers");
  verdict.Succeeded(port_->ClosePort(), "ClosePort");
}

void SerialScenario::WorkAgain(Verdict& verdict) {
  if (comm_ == nullptr) return;
  port_ = Use<_CKespCOMPort3>(comm_.Get(), csRS232, verdict);
  verdict.Expect(port_ != nullptr, "there is no transport");
  if (port_ == nullptr || !Point(port_.Get(), verdict)) return;
  verdict.Succeeded(comm_->put_AutoClose(VARIANT_TRUE), "AutoClose");
  EmptyLine(verdict);
  MustQuery(comm_.Get(), L"*IDN?", kSerialIdentity, verdict);
}

bool SerialScenario::Begin(Verdict& verdict) {
  comm_ = Make<_CKespCommObj>(__uuidof(CKespCommObj), verdict);
  if (comm_ != nullptr) port_ = Use<_CKespCOMPort3>(comm_.Get(), csRS232, verdict);
  return port_ != nullptr && Point(port_.Get(), verdict);
}

std::unique_ptr<Scenario> MakeSerialQuery() {
  return std::make_unique<SerialQuery>();
}
std::unique_ptr<Scenario> MakeSerialBinary() {
  return std::make_unique<SerialBinary>();
}
std::unique_ptr<Scenario> MakeSerialDetection() {
  return std::make_unique<SerialDetection>();
}
std::unique_ptr<Scenario> MakeSerialNobody() {
  return std::make_unique<SerialNobody>();
}

}  // namespace kesp::faults
