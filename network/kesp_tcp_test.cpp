// Tests of the network transport's creation and settings.
#include <gtest/gtest.h>

#include "network/kesp_tcp_fixture.h"

namespace kesp {
namespace {

class CKespTCPTest : public KespTCPFixture {};

TEST_F(CKespTCPTest, New_HasTheDefaults) {
  EXPECT_TRUE(tcp_->CheckNonAscii());
  EXPECT_TRUE(tcp_->TerminateOnEOS());
  EXPECT_TRUE(tcp_->StripCRLF());
  EXPECT_EQ(tcp_->TimeOutmSecs(), 3000);
  EXPECT_EQ(tcp_->EOSChar(), L"\r");
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckClosed);
  EXPECT_EQ(tcp_->Port(), 0);
  EXPECT_EQ(tcp_->IPAddress(), L"0.0.0.0");
  EXPECT_FALSE(tcp_->CreateLogFile());
  EXPECT_EQ(tcp_->LogFilename(), L"CKespTCP.log");
  EXPECT_EQ(tcp_->Protocol(), EKespProtocol::sckTCPProtocol);
  EXPECT_EQ(tcp_->IPType(), EIPType::ipStatic);
  ASSERT_NE(tcp_->Devices(), nullptr);
  EXPECT_EQ(tcp_->Devices()->Count(), 0);
  EXPECT_TRUE(socket_->calls.empty());
}

TEST_F(CKespTCPTest, GetKey_ElevenCharactersAndDifferentForEachObject) {
  CKespTCP other(
      fakes_.environment,
      [](SocketListener& listener) { return std::make_unique<SocketControlFake>(listener); }, MakeInstrument);
  EXPECT_EQ(tcp_->GetKey(), L"0000000100K");
  EXPECT_EQ(other.GetKey(), L"0000000200K");
}

TEST_F(CKespTCPTest, PlainProperties_KeepWhatIsSet) {
  tcp_->SetCheckNonAscii(false);
  tcp_->SetTerminateOnEOS(false);
  tcp_->SetStripCRLF(false);
  tcp_->SetTimeOutmSecs(-1);
  tcp_->SetEOSChar(L"");
  tcp_->SetLogFilename(L"other.log");
  tcp_->SetCreateLogFile(true);
  tcp_->SetProtocol(static_cast<EKespProtocol>(7));
  tcp_->SetIPType(EIPType::ipDynamic);
  EXPECT_FALSE(tcp_->CheckNonAscii());
  EXPECT_FALSE(tcp_->TerminateOnEOS());
  EXPECT_FALSE(tcp_->StripCRLF());
  EXPECT_EQ(tcp_->TimeOutmSecs(), -1);
  EXPECT_EQ(tcp_->EOSChar(), L"");
  EXPECT_EQ(tcp_->LogFilename(), L"other.log");
  EXPECT_TRUE(tcp_->CreateLogFile());
  EXPECT_EQ(tcp_->Protocol(), static_cast<EKespProtocol>(7));
  EXPECT_EQ(tcp_->IPType(), EIPType::ipDynamic);
}

TEST_F(CKespTCPTest, SetPort_FromOneTo32767IsTakenAndBelowRefused) {
  for (const int port : {1, 80, 32767}) {
    tcp_->SetPort(static_cast<std::int16_t>(port));
    EXPECT_EQ(tcp_->Port(), port);
  }
  for (const int port : {0, -1, -32768}) {
    EXPECT_EQ(RaisedBy([&] { tcp_->SetPort(static_cast<std::int16_t>(port)); }),
              (Raised{-2147221263, L"[CKespTCP - Port]", L"Invalid Port"}));
    EXPECT_EQ(tcp_->Port(), 32767);
  }
}

TEST_F(CKespTCPTest, SetIPAddress_AnyTextIsTakenAndNoneRefused) {
  for (const wchar_t* address : {L"0.0.0.0", L"999.1", L" ", L"meter.lab"}) {
    tcp_->SetIPAddress(address);
    EXPECT_EQ(tcp_->IPAddress(), address);
  }
  EXPECT_EQ(RaisedBy([&] { tcp_->SetIPAddress(L""); }),
            (Raised{-2147221264, L"[CKespTCP - IPAddress]", L"Invalid IP Address"}));
  EXPECT_EQ(tcp_->IPAddress(), L"meter.lab");
}

TEST_F(CKespTCPTest, State_IsReadFromTheSocketEachTime) {
  for (int state = 0; state <= 9; ++state) {
    socket_->ThenEnters(static_cast<EKespTCPState>(state)).Deliver();
    EXPECT_EQ(tcp_->State(), static_cast<EKespTCPState>(state));
  }
}

TEST_F(CKespTCPTest, KeepAlive_HandsOutWhatTheEventsHold) {
  events_.keep_alive = std::make_shared<int>(1);
  EXPECT_EQ(listener_->KeepAlive(), events_.keep_alive);
  tcp_->SetEvents(nullptr);
  EXPECT_EQ(listener_->KeepAlive(), nullptr);
}

TEST_F(CKespTCPTest, LogOff_NothingIsWritten) {
  Connect();
  socket_->ThenReceives("A\r").ThenReportsSent(1, 0).ThenPeerCloses().ThenFails(10054);
  std::wstring result;
  EXPECT_TRUE(tcp_->ReadLine(result));
  for (int i = 0; i < 3; ++i) fakes_.pump.PumpOnce();
  EXPECT_TRUE(tcp_->Uninitialize());
  EXPECT_EQ(fakes_.files.faults.calls(), 0);
}

TEST_F(CKespTCPTest, LogLine_IsDateTickAndMessageInTheNamedFile) {
  tcp_->SetLogFilename(L"C:\\logs\\tcp.log");
  StartLog();
  fakes_.clock.SetDateTimeText(L"1/2/2024 3:04:05");
  fakes_.clock.SetTickCount(-5);
  tcp_->SetProtocol(EKespProtocol::sckTCPProtocol);
  EXPECT_NE(RaisedBy([&] { tcp_->Initialize(); }).number, 0);
  EXPECT_EQ(Log(), "1/2/2024 3:04:05\t-5\tInitialize()\r\n1/2/2024 3:04:05\t-5\tCheck IP Address...\r\n");
}

}  // namespace
}  // namespace kesp
