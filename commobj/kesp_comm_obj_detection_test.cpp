// Unit tests of DetectInstrument and SetInputMode on each transport.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "commobj/kesp_comm_obj_fixture.h"
#include "support/lines_fixture.h"

namespace kesp {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr ECommStyle kAllStyles[] = {ECommStyle::csRS232, ECommStyle::csTCPIP, ECommStyle::csIEEE};

class CKespCommObjDetectionTest : public KespCommObjFixture {
 protected:
  CKespCommObjDetectionTest() {
    const auto record = [this](const std::wstring& event) { heard_.push_back(event); };
    events_.record = record;
    serial_events_.record = record;
    ieee_events_.record = record;
    fakes_.clock.SetStepPerReading(1);
    comm_->serial().SetBaudRate(EKespBaudRate3::br9600);
    comm_->serial().SetMaxBaudRate(EKespBaudRate3::br9600);
    comm_->serial().SetMinBaudRate(EKespBaudRate3::br9600);
    comm_->ieee().SetEOSChar(L"10");
  }

  bool Detect(EDetectLevel level = EDetectLevel::dlAllCommands) {
    return comm_->DetectInstrument(result_, level);
  }

  // The status as a query leaves it that could not connect, to be found unchanged.
  void FailAQuery() {
    const ECommStyle style = comm_->CommStyle();
    comm_->SetCommStyle(ECommStyle::csTCPIP);
    EXPECT_FALSE(comm_->Query(result_, L"t"));
    EXPECT_EQ(comm_->CommError(), ECommError::cfrInvalidIPAddress);
    comm_->SetCommStyle(style);
  }
  void ExpectStatusOfTheQuery() const {
    EXPECT_EQ(comm_->CommError(), ECommError::cfrInvalidIPAddress);
    EXPECT_EQ(comm_->CommErrorSource(), L"[CKespTCP - Initialize()]");
    EXPECT_EQ(comm_->CommErrorDescr(), L"Invalid IP Address");
  }
  void ExpectBox(const std::wstring& text) const {
    ASSERT_EQ(fakes_.user.boxes().size(), 1U);
    EXPECT_EQ(fakes_.user.boxes()[0].title, L"Kesp Communications Error");
    EXPECT_EQ(fakes_.user.boxes()[0].text, text);
  }

  Lines heard_;
  std::wstring result_ = L"before";
};

TEST_F(CKespCommObjDetectionTest, Serial_IsTheTransportsDetectionWithoutOmegaAddress) {
  ports_.line.Answer("*IDN?\r", "KESP,1\r\n");
  comm_->serial().SetControllerStyle(EKespControllerStyle3::CS_KESP);
  EXPECT_TRUE(Detect());
  EXPECT_EQ(result_, L"KESP,1");
  EXPECT_EQ(heard_.front(), L"AutoDetectBegin(1)");
  EXPECT_EQ(ports_.line.written, "*IDN?\r");
  EXPECT_FALSE(ports_.line.open);
}

TEST_F(CKespCommObjDetectionTest, Serial_LevelIsHandedOn) {
  EXPECT_FALSE(Detect(EDetectLevel::dlCommonCommands));
  EXPECT_EQ(ports_.line.written, "*IDN?\r*VER\r");
}

TEST_F(CKespCommObjDetectionTest, Serial_PortThatAQueryLeftOpen_TheNextQueryOpensItAgain) {
  ports_.line.Answer("t\r", "20.5\r\n");
  ports_.line.Answer("*IDN?\r", "KESP,1\r\n");
  comm_->SetAutoClose(false);
  EXPECT_TRUE(comm_->Query(result_, L"t"));
  EXPECT_TRUE(Detect());
  EXPECT_FALSE(ports_.line.open);
  EXPECT_TRUE(comm_->Query(result_, L"t"));
  EXPECT_EQ(result_, L"20.5");
}

TEST_F(CKespCommObjDetectionTest, Network_IsTheTransportsDetectionAndTheNextQueryGoesWhereItIsSent) {
  UseNetwork();
  Script([](SocketControlFake& socket) { socket.ThenConnects(); });
  socket_->on_send = [this](const std::string& command) {
    if (command != "*IDN?\r") socket_->ThenReceives("2.1\r");
  };
  EXPECT_TRUE(Detect());
  EXPECT_EQ(result_, L"2.1");
  EXPECT_EQ(socket_->sent, "*IDN?\r*VER\r");
  EXPECT_EQ(heard_.front(), L"AutoDetectBegin()");
  EXPECT_EQ(heard_.back(), L"AutoDetectEnd()");
  EXPECT_TRUE(IsClosed());
  comm_->network().SetIPAddress(L"10.0.0.8");
  EXPECT_TRUE(comm_->Query(result_, L"t"));
  EXPECT_EQ(socket_->RemoteHost(), L"10.0.0.8");
}

TEST_F(CKespCommObjDetectionTest, Network_LevelIsHandedOnAndTheConnectionClosedWhenNothingIsFound) {
  UseNetwork();
  Script([](SocketControlFake& socket) { socket.ThenConnects(); });
  EXPECT_FALSE(Detect(EDetectLevel::dlSCPIOnly));
  EXPECT_EQ(socket_->sent, "*IDN?\r");
  EXPECT_EQ(result_, L"");
  EXPECT_TRUE(IsClosed());
}

TEST_F(CKespCommObjDetectionTest, Network_UdpProtocol_IsADiscovery) {
  UseNetwork();
  comm_->network().SetProtocol(EKespProtocol::sckUDPProtocol);
  socket_->on_send = [this](const std::string& bytes) {
    if (bytes.size() == 4) socket_->ThenHears({.address = 0x0A000001, .port = 30718}, "\xF7");
  };
  EXPECT_TRUE(Detect());
  EXPECT_EQ(comm_->network().Devices()->Count(), 1);
  EXPECT_EQ(comm_->network().Devices()->Item(1)->IPAddress(), L"10.0.0.1");
}

TEST_F(CKespCommObjDetectionTest, Network_Failure_IsShownAndGivesFalse) {
  UseNetwork();
  comm_->network().SetIPAddress(L"0.0.0.0");
  EXPECT_FALSE(Detect());
  ExpectBox(
      L"An error occurred while attempting to detect instrument.\r\n"
      L"Error: -2147221264 - Invalid IP Address\r\n"
      L"([CKespTCP - Initialize()])");
}

TEST_F(CKespCommObjDetectionTest, Ieee_SearchesFromTheFirstAddress) {
  comm_->SetCommStyle(ECommStyle::csIEEE);
  comm_->ieee().SetPrimaryAddress(5);
  bus_.waiting = "KESP,GP488\n";
  EXPECT_TRUE(Detect(EDetectLevel::dlSCPIOnly));
  EXPECT_EQ(result_, L"KESP,GP488\n");
  EXPECT_THAT(heard_, ElementsAre(L"AutoDetectBegin()", L"AutoDetectUpdate(*IDN?,5,False)",
                                  L"AutoDetectUpdate(*IDN?,1,False)", L"AutoDetectEnd()"));
  EXPECT_EQ(bus_.heard.front(), "ibdev(0,1,0,11,1,0)");
}

TEST_F(CKespCommObjDetectionTest, Ieee_Failure_IsShownAndGivesFalse) {
  comm_->SetCommStyle(ECommStyle::csIEEE);
  bus_.answers["ibclr"] = [] { return GpibOutcome::Failure(2); };
  EXPECT_FALSE(Detect());
  ExpectBox(
      L"An error occurred while attempting to detect instrument.\r\n"
      L"Error: -2147221269 - Error calling ibclr(): Error: 2 - Write function detected no listeners\r\n"
      L"([CKespIEEE - InitializeIEEEBoard()])");
}

TEST_F(CKespCommObjDetectionTest, NoTransport_RaisesInsteadOfShowing) {
  comm_->SetCommStyle(ECommStyle::csNone);
  EXPECT_EQ(RaisedBy([&] { Detect(); }), (Raised{-2147221303, L"[CKespCommObj - DetectInstrument()]",
                                                 L"Communications object not initialized"}));
  EXPECT_TRUE(fakes_.user.boxes().empty());
  EXPECT_EQ(result_, L"before");
}

TEST_F(CKespCommObjDetectionTest, Status_StaysAsItWas) {
  FailAQuery();
  for (const ECommStyle style : kAllStyles) {
    comm_->SetCommStyle(style);
    Detect(EDetectLevel::dlSCPIOnly);
    ExpectStatusOfTheQuery();
  }
  ports_.line.Answer("*IDN?\r", "KESP,1\r\n");
  comm_->SetCommStyle(ECommStyle::csRS232);
  EXPECT_TRUE(Detect());
  ExpectStatusOfTheQuery();
}

TEST_F(CKespCommObjDetectionTest, Trace_HasNoLinesOfDetection) {
  StartTrace();
  comm_->serial().SetCreateLogFile(false);
  Detect(EDetectLevel::dlSCPIOnly);
  EXPECT_THAT(Trace(), IsEmpty());
}

TEST_F(CKespCommObjDetectionTest, SetInputMode_Serial_IsHandedOnAndLeavesOtherError) {
  comm_->SetInputMode(EInputMode::imBinary);
  EXPECT_EQ(comm_->serial().InputMode(), EInputMode::imBinary);
  EXPECT_EQ(comm_->CommError(), ECommError::cfrOtherError);
  comm_->SetInputMode(EInputMode::imText);
  EXPECT_EQ(comm_->serial().InputMode(), EInputMode::imText);
  comm_->SetInputMode(static_cast<EInputMode>(2));
  EXPECT_EQ(comm_->serial().InputMode(), EInputMode::imText);
}

TEST_F(CKespCommObjDetectionTest, SetInputMode_OtherStyles_ChangeNothingButTheStatus) {
  for (const ECommStyle style : {ECommStyle::csTCPIP, ECommStyle::csIEEE}) {
    comm_ = std::make_unique<CKespCommObj>(fakes_.environment, Transports());
    comm_->SetCommStyle(style);
    ASSERT_EQ(comm_->CommError(), ECommError::cfrSuccess);
    comm_->SetInputMode(EInputMode::imBinary);
    EXPECT_EQ(comm_->serial().InputMode(), EInputMode::imText);
    EXPECT_EQ(comm_->CommError(), ECommError::cfrOtherError);
    EXPECT_EQ(comm_->CommErrorSource(), L"");
    EXPECT_EQ(comm_->CommErrorDescr(), L"");
  }
  EXPECT_THAT(socket_->calls, IsEmpty());
  EXPECT_TRUE(bus_.heard.empty());
}

TEST_F(CKespCommObjDetectionTest, SetInputMode_SourceAndDescriptionStayUntilTheNextExchange) {
  FailAQuery();
  comm_->SetInputMode(EInputMode::imText);
  EXPECT_EQ(comm_->CommError(), ECommError::cfrOtherError);
  EXPECT_EQ(comm_->CommErrorSource(), L"[CKespTCP - Initialize()]");
  ports_.line.Answer("t\r", "20.5\r\n");
  EXPECT_TRUE(comm_->Query(result_, L"t"));
  EXPECT_EQ(comm_->CommError(), ECommError::cfrSuccess);
}

TEST_F(CKespCommObjDetectionTest, SetInputMode_NoTransport_RaisesWithTheSourceOfUpdate) {
  comm_->SetCommStyle(ECommStyle::csNone);
  EXPECT_EQ(RaisedBy([&] { comm_->SetInputMode(EInputMode::imBinary); }),
            (Raised{-2147221303, L"[CKespCommObj - Update()]", L"Communications object not initialized"}));
  EXPECT_EQ(comm_->CommError(), ECommError::cfrSuccess);
  EXPECT_EQ(comm_->serial().InputMode(), EInputMode::imText);
}

}  // namespace
}  // namespace kesp
