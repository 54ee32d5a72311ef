// Failures swept over the network transport: errors are those of the reference, and the object goes on
// working.
#include <gtest/gtest.h>

#include "network/kesp_tcp_discovery_fixture.h"
#include "support/fault_sweep_fixture.h"

namespace kesp {
namespace {

constexpr std::int16_t kTimeOutMs = 500;

// An instrument at 10.0.0.7 that answers "t", and two that answer the broadcast and "*IDN?". What the
// socket's notifications throw ends there, as it does in the window procedure.
class TcpStage final : public KespTCPFixture, public FaultStage {
 public:
  using KespTCPFixture::dialog_;
  using KespTCPFixture::fakes_;
  using KespTCPFixture::tcp_;

  TcpStage() {
    SetTarget();
    tcp_->SetTimeOutmSecs(kTimeOutMs);
    StartLog();
    events_.record = [](const std::wstring&) {};
    fakes_.pump.OnPump([this] { Pump(); });
    socket_->on_connect = [this] {
      if (socket_->Protocol() == EKespProtocol::sckTCPProtocol) socket_->ThenConnects();
    };
    socket_->on_send = [this](const std::string& bytes) { Answer(bytes); };
  }

  void TestBody() override {}

  std::vector<FaultySeam> Seams() override {
    return {{"socket", socket_->faults},
            {"connection closed", pumping_, [this] { broken_by_ = 0; }},
            {"connection broken", pumping_, [this] { broken_by_ = 10054; }},
            {"files out of memory", fakes_.files.faults},
            {"files", fakes_.files.faults, [this] { fakes_.files.answers_failure = true; }},
            {"GUIDs", fakes_.guids.faults},
            {"dialog", dialog_.faults},
            {"user surface", fakes_.user.faults}};
  }

  void ExpectWhole() override {
    EXPECT_EQ(tcp_->TimeOutmSecs(), kTimeOutMs);
    EXPECT_EQ(tcp_->Protocol(), protocol_);
    EXPECT_EQ(tcp_->IPType(), EIPType::ipStatic);
    ExpectWholeLog(Log());
    std::set<std::wstring> addresses;
    for (const auto& device : tcp_->Devices()->Items()) {
      EXPECT_TRUE(addresses.insert(device->IPAddress()).second) << "twice in the collection";
    }
  }

  void ExpectWorking() override {
    tcp_->SetProtocol(EKespProtocol::sckTCPProtocol);
    tcp_->SetTerminateOnEOS(true);
    std::wstring reply;
    EXPECT_EQ(RaisedBy([&] {
                tcp_->Uninitialize();
                tcp_->Initialize();
                tcp_->WriteLine(L"t");
                tcp_->ReadLine(reply);
                tcp_->Uninitialize();
              }),
              Raised());
    EXPECT_TRUE(reply.starts_with(L"20.5"));
    EXPECT_EQ(tcp_->State(), EKespTCPState::sckClosed);
  }

  void Write() {
    tcp_->Initialize();
    tcp_->WriteLine(L"t");
  }
  void UseUDP() {
    protocol_ = EKespProtocol::sckUDPProtocol;
    tcp_->SetProtocol(protocol_);
  }

  std::wstring result_;

 private:
  void Pump() {
    fakes_.clock.Advance(kPumpMilliseconds);
    const bool breaks = pumping_.IsFailing() && socket_->State() != EKespTCPState::sckClosed;
    try {
      if (!breaks) {
        socket_->Deliver();
      } else if (broken_by_ != 0) {
        socket_->Break(broken_by_);
      } else if (socket_->State() == EKespTCPState::sckConnected) {
        socket_->CloseByPeer();
      }
    } catch (...) {
    }
  }

  void Answer(const std::string& bytes) {
    if (socket_->Protocol() == EKespProtocol::sckUDPProtocol) {
      socket_->ThenHears(SenderAt(1), kDiscoveryReply).ThenHears(SenderAt(2), kDiscoveryReply);
    } else if (bytes == "*IDN?\r") {
      socket_->ThenReceives("KESP,7300,1234,1.0\r");
    } else {
      // Behind the pumping of WriteLine.
      socket_->ThenNothing().ThenReceives("20.5" + SystemCodePage().ToBytes(tcp_->EOSChar()));
    }
  }

  FailingCallFake pumping_;
  std::int32_t broken_by_ = 0;
  EKespProtocol protocol_ = EKespProtocol::sckTCPProtocol;
};

using Case = FaultCase<TcpStage>;

const Case kCases[] = {
    {.name = "Create",
     .run =
         [](TcpStage& stage) {
           const CKespTCP other(
               stage.fakes_.environment,
               [](SocketListener& listener) { return std::make_unique<SocketControlFake>(listener); },
               MakeInstrument);
         },
     .numbers = {0}},
    {.name = "SetIPAddress",
     .run = [](TcpStage& stage) { stage.tcp_->SetIPAddress(L"instrument-in-the-next-room.example"); },
     .numbers = {0}},
    {.name = "SetEOSChar",
     .run = [](TcpStage& stage) { stage.tcp_->SetEOSChar(L"<the end of the reply>"); },
     .numbers = {0}},
    {.name = "SetLogFilename",
     .run = [](TcpStage& stage) { stage.tcp_->SetLogFilename(L"C:\\Temp\\conversation.log"); },
     .numbers = {0}},
    {.name = "Initialize",
     .run = [](TcpStage& stage) { stage.tcp_->Initialize(); },
     .numbers = {0, tcp_error::ERR_CONNECTING, tcp_error::ERR_TIMEOUT},
     .source = L"[CKespTCP - Initialize()]"},
    {.name = "WriteLine",
     .run = [](TcpStage& stage) { stage.tcp_->WriteLine(L"t"); },
     .numbers = {0, tcp_error::ERR_SEND_DATA},
     .source = L"[CKespTCP - WriteLine()]",
     .prepare = [](TcpStage& stage) { stage.tcp_->Initialize(); }},
    {.name = "ReadLine",
     .run = [](TcpStage& stage) { stage.tcp_->ReadLine(stage.result_); },
     .numbers = {0, tcp_error::ERR_TIMEOUT},
     .source = L"[CKespTCP - ReadLine()]",
     .prepare = &TcpStage::Write},
    {.name = "ReadLineBinary",
     .run =
         [](TcpStage& stage) {
           BinaryValue bytes;
           stage.tcp_->ReadLineBinary(bytes);
         },
     .numbers = {0, tcp_error::ERR_TIMEOUT},
     .source = L"[CKespTCP - ReadLineBinary()]",
     .prepare = &TcpStage::Write},
    {.name = "Uninitialize",
     .run = [](TcpStage& stage) { stage.tcp_->Uninitialize(); },
     .numbers = {0, tcp_error::ERR_CLOSING},
     .source = L"[CKespTCP - Uninitialize()]",
     .prepare = &TcpStage::Write},
    {.name = "AutoDetect",
     .run = [](TcpStage& stage) { stage.tcp_->AutoDetect(stage.result_); },
     .numbers = {0}},
    {.name = "Discovery",
     .run = [](TcpStage& stage) { stage.tcp_->AutoDetect(stage.result_); },
     .numbers = {0, tcp_error::ERR_CONNECTING, tcp_error::ERR_SEND_DATA},
     .source = L"[CKespTCP - UDPBroadcast()]",
     .prepare = &TcpStage::UseUDP},
    {.name = "Edit",
     // 7: even the error box fails.
     .run = [](TcpStage& stage) { stage.tcp_->Edit({}, L"C:\\Kesp\\a help file.chm", 5); },
     .numbers = {0, 7}},
};

class CKespTCPFaultsTest : public testing::TestWithParam<Case> {};

TEST_P(CKespTCPFaultsTest, AnyCallFails_ObjectWorksOn) {
  SweepSeams(GetParam().Operation());
}

TEST_P(CKespTCPFaultsTest, AnyAllocationFails_ObjectWorksOn) {
  SweepAllocations(GetParam().Operation());
}

INSTANTIATE_TEST_SUITE_P(Each, CKespTCPFaultsTest, testing::ValuesIn(kCases), NameOf<TcpStage>);

}  // namespace
}  // namespace kesp
