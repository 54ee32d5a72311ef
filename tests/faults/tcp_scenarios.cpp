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

// The transport by itself, with one connection for several exchanges.
class TcpLines : public TcpScenario {
 public:
  void Run(Verdict& verdict) override {
    if (!Begin(verdict)) return;
    VARIANT_BOOL answer = VARIANT_FALSE;
    if (!verdict.Succeeded(transport_->Initialize(&answer), "Initialize")) return;
    for (int i = 0; i < 2 && Exchange(verdict); ++i) {
    }
    verdict.Succeeded(transport_->Uninitialize(&answer), "Uninitialize");
  }
  void WorkAgain(Verdict& verdict) override {
    VARIANT_BOOL answer = VARIANT_FALSE;
    if (transport_ != nullptr) verdict.Succeeded(transport_->Uninitialize(&answer), "Uninitialize");
    TcpScenario::WorkAgain(verdict);
  }

 private:
  bool Exchange(Verdict& verdict) const {
    VARIANT_BOOL answer = VARIANT_FALSE;
    if (!verdict.Succeeded(transport_->WriteLine(Text(L"*IDN?").get(), &answer), "WriteLine")) return false;
    Text reply(L"before");
    if (!verdict.Succeeded(transport_->ReadLine(reply.in_out(), &answer), "ReadLine")) return false;
    verdict.Expect(answer != VARIANT_TRUE || reply.str() == kTcpIdentity, "ReadLine gives another reply");
    return true;
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
    VARIANT_BOOL answer = VARIANT_FALSE;
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
    if (verdict.Succeeded(transport_->put_Protocol(sckUDPProtocol), "Protocol")) Detect(verdict);
  }
};

// With the trace of the communication object and the transport's log.
class TcpLogs : public TcpScenario {
 public:
  void Run(Verdict& verdict) override {
    if (!Begin(verdict)) return;
    if (!verdict.Succeeded(transport_->put_CreateLogFile(VARIANT_TRUE), "CreateLogFile")) return;
    if (!verdict.Succeeded(comm_->put_DebugFilename(Text(LogName(L"trace")).get()), "DebugFilename")) return;
    if (!verdict.Succeeded(comm_->put_Debugging(VARIANT_TRUE), "Debugging")) return;
    if (!verdict.Succeeded(transport_->put_LogFilename(Text(LogName(L"log")).get()), "LogFilename")) return;
    QueryGives(comm_.Get(), L"*IDN?", kTcpIdentity, verdict);
    Text key;
    if (verdict.Succeeded(comm_->GetKey(key.out()), "GetKey"))
      verdict.Expect(!key.str().empty(), "the key is empty");
  }

 private:
  static std::wstring LogName(const wchar_t* kind) {
    wchar_t folder[MAX_PATH] = L"";
    GetTempPathW(MAX_PATH, folder);
    return folder + std::wstring(L"kesp-faults-") + kind + L".txt";
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
  return std::make_unique<TcpLines>();
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
