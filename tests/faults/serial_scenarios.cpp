// Queries and searches at a COM port.
#include "tests/faults/scenarios.h"
#include "tests/faults/serial_stage.h"

namespace kesp::faults {

namespace {

template <class Stage>
class SerialQuery : public TransportScenario<Stage> {
 public:
  void Run(Verdict& verdict) override {
    if (!this->Begin(verdict)) return;
    _CKespCommObj* const comm = this->comm_.Get();
    if (!QueryGives(comm, L"*IDN?", kSerialIdentity, verdict)) return;
    // And with the port left open.
    if (!verdict.Succeeded(comm->put_AutoClose(VARIANT_FALSE), "AutoClose")) return;
    if (!QueryGives(comm, L"*IDN?", kSerialIdentity, verdict)) return;
    QueryGives(comm, L"*IDN?", kSerialIdentity, verdict);
  }
};

class SerialBinary : public SerialScenario {
 public:
  void Run(Verdict& verdict) override {
    if (!Begin(verdict)) return;
    if (!verdict.Succeeded(comm_->SetInputMode(imBinary), "SetInputMode")) return;
    const std::wstring echo = NewEcho();
    QueryBinaryGives(comm_.Get(), echo, Narrow(echo) + "\r\n", verdict);
    verdict.Succeeded(comm_->SetInputMode(imText), "SetInputMode");
  }
  void WorkAgain(Verdict& verdict) override {
    if (comm_ == nullptr) return;
    if (transport_ != nullptr) verdict.Succeeded(comm_->SetInputMode(imText), "SetInputMode");
    SerialScenario::WorkAgain(verdict);
  }
};

// What an instrument sends until the line is silent.
class SerialDownload : public LinesScenario<SerialStage> {
 private:
  bool Exchange(Verdict& verdict) const override {
    constexpr long kSilenceMs = 100;
    if (!verdict.Succeeded(transport_->put_TimeOut(kSilenceMs), "TimeOut")) return false;
    const std::wstring echo = NewEcho();
    if (!Write(echo, verdict)) return false;
    Text data(L"before");
    VARIANT_BOOL answer = kUnset;
    if (verdict.Answered(transport_->Download(data.in_out(), &answer), answer, "Download"))
      verdict.Expect(data.str() == echo + L"\r\n", "Download gives other data: " + Narrow(data.str()));
    return false;
  }
};

// The controller is behind a port switch.
struct SwitchStage : SerialStage {
  static bool Point(_CKespCOMPort3* port, Verdict& verdict) {
    ComPtr<_CKespSmartSwitch3> box;
    return SerialStage::Point(port, verdict) &&
           verdict.Succeeded(port->put_UseSmartSwitch(VARIANT_TRUE), "UseSmartSwitch") &&
           verdict.Succeeded(port->get_SmartSwitch(box.GetAddressOf()), "SmartSwitch") &&
           verdict.Succeeded(box->put_Style(ssBB4port), "Style") &&
           verdict.Succeeded(box->put_SSPort(Text(L"A").get()), "SSPort");
  }
};

// A port forgets at its end where its radio modem points, in a file that other programs share.
class SerialMemory : public Scenario {
 public:
  void Run(Verdict& verdict) override {
    constexpr short kPort = 250;
    WritePrivateProfileStringW(L"COM250", L"InstrAddr", L"12", File().c_str());
    {
      const auto port = Make<_CKespCOMPort3>(__uuidof(CKespCOMPort3), verdict);
      if (port == nullptr || !verdict.Succeeded(port->put_Port(kPort), "Port")) return;
    }
    wchar_t address[16] = L"";
    GetPrivateProfileStringW(L"COM250", L"InstrAddr", L"none", address, 16, File().c_str());
    const bool is_forgotten = address == std::wstring(L"-1");
    verdict.Expect(is_forgotten || address == std::wstring(L"12"), "the file is damaged: " + Narrow(address));
    verdict.ExpectUndisturbed(is_forgotten, "the port does not forget its modem's address");
  }
  void WorkAgain(Verdict& verdict) override { Run(verdict); }

 private:
  static std::wstring File() { return TemporaryPath(L"RFModem.ini"); }
};

// A port that is not there, with the log of the transport.
class SerialNobody : public SerialScenario {
 public:
  void Run(Verdict& verdict) override {
    if (!Begin(verdict)) return;
    constexpr short kMissingPort = 250;
    if (!verdict.Succeeded(transport_->put_Port(kMissingPort), "Port")) return;
    if (!verdict.Succeeded(transport_->put_CreateLogFile(VARIANT_TRUE), "CreateLogFile")) return;
    VARIANT_BOOL is_there = kUnset;
    verdict.Succeeded(transport_->PortExists(kMissingPort, &is_there), "PortExists");
    verdict.ExpectUndisturbed(is_there == VARIANT_FALSE, "PortExists finds the port");
    Text reply;
    VARIANT_BOOL answer = kUnset;
    verdict.Succeeded(comm_->Query(reply.in_out(), Text(L"*IDN?").get(), nullptr, nullptr, &answer), "Query");
    verdict.Expect(answer != VARIANT_TRUE, "Query succeeds without a port");
  }
};

}  // namespace

std::unique_ptr<Scenario> MakeSerialQuery() {
  return std::make_unique<SerialQuery<SerialStage>>();
}
std::unique_ptr<Scenario> MakeSerialBinary() {
  return std::make_unique<SerialBinary>();
}
std::unique_ptr<Scenario> MakeSerialLines() {
  return std::make_unique<LinesScenario<SerialStage>>();
}
std::unique_ptr<Scenario> MakeSerialDownload() {
  return std::make_unique<SerialDownload>();
}
std::unique_ptr<Scenario> MakeSerialSwitch() {
  return std::make_unique<SerialQuery<SwitchStage>>();
}
std::unique_ptr<Scenario> MakeSerialMemory() {
  return std::make_unique<SerialMemory>();
}
std::unique_ptr<Scenario> MakeSerialDetection() {
  return std::make_unique<DetectionScenario<SerialStage>>();
}
std::unique_ptr<Scenario> MakeSerialNobody() {
  return std::make_unique<SerialNobody>();
}

}  // namespace kesp::faults
