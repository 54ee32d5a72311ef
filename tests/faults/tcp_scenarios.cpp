// Queries over the network, with a connection each and on one that stays open.
#include "tests/faults/scenarios.h"
#include "tests/faults/tcp_stage.h"

namespace kesp::faults {

namespace {

class TcpQuery : public TcpScenario {
 public:
  void Run(Verdict& verdict) override {
    if (!Begin(verdict)) return;
    QueryGives(comm_.Get(), L"*IDN?", kTcpIdentity, verdict);
    UpdateWorks(comm_.Get(), L"SETP 20", verdict);
    QueryGives(comm_.Get(), L"ECHO 12345", L"ECHO 12345", verdict);
  }
};

class TcpBinary : public TcpScenario {
 public:
  void Run(Verdict& verdict) override {
    if (!Begin(verdict)) return;
    QueryBinaryGives(comm_.Get(), L"ECHO binary", "ECHO binary\r", verdict);
    QueryBinaryGives(comm_.Get(), L"ECHO again", "ECHO again\r", verdict);
  }
};

// Nobody listens: the port of a socket that is bound and no more.
class TcpNobody : public TcpScenario {
 public:
  void Run(Verdict& verdict) override {
    if (!Begin(verdict)) return;
    constexpr short kNobodysPort = 9;
    if (!verdict.Succeeded(transport_->put_Port(kNobodysPort), "Port")) return;
    Text reply;
    VARIANT_BOOL answer = kUnset;
    verdict.Succeeded(comm_->Query(reply.in_out(), Text(L"*IDN?").get(), nullptr, nullptr, &answer), "Query");
    verdict.Expect(answer != VARIANT_TRUE, "Query succeeds where nobody listens");
  }
};

// A name in place of an address, which the system looks up.
class TcpName : public TcpScenario {
 public:
  void Run(Verdict& verdict) override {
    if (!Begin(verdict)) return;
    if (!verdict.Succeeded(transport_->put_IPAddress(Text(L"localhost").get()), "IPAddress")) return;
    QueryGives(comm_.Get(), L"*IDN?", kTcpIdentity, verdict);
  }
};

// The search over the local network, by broadcasts that the instrument answers.
class TcpDiscovery : public TcpScenario {
 public:
  void Run(Verdict& verdict) override {
    if (!Begin(verdict)) return;
    if (!verdict.Succeeded(transport_->put_Protocol(sckUDPProtocol), "Protocol")) return;
    Detect(L"", verdict);
    ComPtr<_CInstruments> devices;
    long count = -1;
    if (!verdict.Succeeded(transport_->get_Devices(devices.GetAddressOf()), "Devices")) return;
    if (!verdict.Succeeded(devices->get_Count(&count), "Count")) return;
    verdict.Expect(count == 0 || count == 1, "there are too many devices: " + std::to_string(count));
    verdict.ExpectUndisturbed(count == 1, "nobody is found");
    if (count == 1) Read(devices.Get(), verdict);
  }

 private:
  static void Read(_CInstruments* devices, Verdict& verdict) {
    ComPtr<_CInstrument> device;
    Text model;
    if (!verdict.Succeeded(devices->Item(*Value(1).get(), device.GetAddressOf()), "Item")) return;
    if (!verdict.Succeeded(device->get_Model(model.out()), "Model")) return;
    verdict.ExpectUndisturbed(model.str() == L"TORTURE",
                              "the device has another model: " + Narrow(model.str()));
  }
};

// With the trace of the communication object and the transport's log.
class TcpLogs : public TcpScenario {
 public:
  void Run(Verdict& verdict) override {
    if (!Begin(verdict)) return;
    if (!verdict.Succeeded(transport_->put_CreateLogFile(VARIANT_TRUE), "CreateLogFile")) return;
    if (!verdict.Succeeded(comm_->put_DebugFilename(Text(TemporaryPath(L"kesp-faults-trace.txt")).get()),
                           "DebugFilename"))
      return;
    if (!verdict.Succeeded(comm_->put_Debugging(VARIANT_TRUE), "Debugging")) return;
    if (!verdict.Succeeded(transport_->put_LogFilename(Text(TemporaryPath(L"kesp-faults-log.txt")).get()),
                           "LogFilename"))
      return;
    QueryGives(comm_.Get(), L"*IDN?", kTcpIdentity, verdict);
    Text key;
    if (verdict.Succeeded(comm_->GetKey(key.out()), "GetKey"))
      verdict.Expect(!key.str().empty(), "the key is empty");
  }
};

}  // namespace

std::unique_ptr<Scenario> MakeTcpQuery() {
  return std::make_unique<TcpQuery>();
}
std::unique_ptr<Scenario> MakeTcpBinary() {
  return std::make_unique<TcpBinary>();
}
std::unique_ptr<Scenario> MakeTcpLines() {
  return std::make_unique<LinesScenario<TcpStage>>();
}
std::unique_ptr<Scenario> MakeTcpNobody() {
  return std::make_unique<TcpNobody>();
}
std::unique_ptr<Scenario> MakeTcpName() {
  return std::make_unique<TcpName>();
}
std::unique_ptr<Scenario> MakeTcpDetection() {
  return std::make_unique<DetectionScenario<TcpStage>>();
}
std::unique_ptr<Scenario> MakeTcpDiscovery() {
  return std::make_unique<TcpDiscovery>();
}
std::unique_ptr<Scenario> MakeTcpLogs() {
  return std::make_unique<TcpLogs>();
}

}  // namespace kesp::faults
