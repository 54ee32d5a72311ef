// Tests of the network transport's connection and of the notifications other than data.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "network/kesp_tcp_fixture.h"

namespace kesp {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const Raised kTimeOut{tcp_error::ERR_TIMEOUT, L"[CKespTCP - Initialize()]",
                      L"Timeout - unable to establish connection"};

class CKespTCPInitializeTest : public KespTCPFixture {
 protected:
  Raised Initialize() {
    return RaisedBy([this] { EXPECT_TRUE(tcp_->Initialize()); });
  }
  void LetConnect() {
    socket_->on_connect = [this] { socket_->ThenConnects(); };
  }
  // How often the target was connected to, since the calls were cleared.
  std::ptrdiff_t Attempts() const {
    return std::count(socket_->calls.begin(), socket_->calls.end(), "Connect 10.0.0.7:5025");
  }
};

TEST_F(CKespTCPInitializeTest, HostAnswers_ConnectsAndLogsEachStep) {
  SetTarget();
  StartLog();
  socket_->on_connect = [this] { socket_->ThenNothing().ThenConnects(); };
  EXPECT_TRUE(tcp_->Initialize());
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckConnected);
  EXPECT_THAT(socket_->calls, ElementsAre("SetProtocol 0", "Connect 10.0.0.7:5025"));
  EXPECT_THAT(Journal(),
              ElementsAre(L"log: Initialize()", L"log: Check IP Address...", L"log: Check Port...",
                          L"log: Connecting to 10.0.0.7 on port 5025...",
                          L"log: Waiting for connection to be established...", L"ConnectBegin()",
                          L"log: Connect (10.0.0.7:5025)", L"ConnectEnd()", L"log: Initialize() Done..."));
}

TEST_F(CKespTCPInitializeTest, AlreadyConnected_ReturnsWithoutTouchingTheSocket) {
  Connect();
  StartLog();
  socket_->ThenPeerCloses();
  fakes_.pump.PumpOnce();
  const int pumps = fakes_.pump.count();
  EXPECT_TRUE(tcp_->Initialize());
  EXPECT_THAT(socket_->calls, IsEmpty());
  EXPECT_EQ(fakes_.pump.count(), pumps);
  EXPECT_THAT(Journal(), ElementsAre(L"CloseBegin()", L"log: Close (10.0.0.7:5025)", L"CloseEnd()",
                                     L"log: Initialize()", L"log: Initialize() Done..."));
}

TEST_F(CKespTCPInitializeTest, AddressOrPortMissing_IsRefusedBeforeAnySocketActivity) {
  StartLog();
  const wchar_t* const source = L"[CKespTCP - Initialize()]";
  EXPECT_EQ(Initialize(), (Raised{tcp_error::ERR_INVALID_IP_ADDRESS, source, L"Invalid IP Address"}));
  tcp_->SetIPAddress(L"10.0.0.7");
  EXPECT_EQ(Initialize(), (Raised{tcp_error::ERR_INVALID_PORT, source, L"Invalid Port"}));
  EXPECT_THAT(socket_->calls, IsEmpty());
  EXPECT_THAT(Journal(), ElementsAre(L"log: Initialize()", L"log: Check IP Address...", L"log: Initialize()",
                                     L"log: Check IP Address...", L"log: Check Port..."));
}

// Call 1 is SetProtocol, call 2 is Connect.
TEST_F(CKespTCPInitializeTest, CallFails_RaisesConnectingWithTheReasonAndLogsIt) {
  for (const int nth : {1, 2}) {
    SetTarget();
    StartLog();
    socket_->FailCall(nth, 10049);
    EXPECT_EQ(
        Initialize(),
        (Raised{tcp_error::ERR_CONNECTING, L"[CKespTCP - Initialize()]",
                L"Unable to establish connection (10049 - Address not available from the local machine)"}));
    EXPECT_EQ(
        Journal().back(),
        L"log: Unable to establish connection to 10.0.0.7 on port 5025: 10049 - Address not available from "
        L"the local machine");
  }
}

TEST_F(CKespTCPInitializeTest, ProtocolAndTarget_AreHandedToTheSocketEachTime) {
  SetTarget();
  tcp_->SetProtocol(EKespProtocol::sckUDPProtocol);
  tcp_->SetTimeOutmSecs(0);
  socket_->state_after_connect = EKespTCPState::sckOpen;
  EXPECT_EQ(Initialize(), kTimeOut);  // an open port is not a connection
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckOpen);
  tcp_->SetProtocol(EKespProtocol::sckTCPProtocol);
  tcp_->SetIPAddress(L"meter.lab");
  LetConnect();
  EXPECT_TRUE(tcp_->Initialize());
  EXPECT_THAT(socket_->calls, ElementsAre("SetProtocol 1", "Connect 10.0.0.7:5025", "Close", "SetProtocol 0",
                                          "Connect meter.lab:5025"));
}

TEST_F(CKespTCPInitializeTest, SilentHost_IsTriedFourTimesForFourSecondsEach) {
  SetTarget();
  StartLog();
  const std::int32_t start = fakes_.clock.tick();
  EXPECT_EQ(Initialize(), kTimeOut);
  EXPECT_EQ(Elapsed(start), 4 * 4000U);
  Calls expected;
  Lines log{L"log: Initialize()", L"log: Check IP Address...", L"log: Check Port..."};
  for (int attempt = 1; attempt <= 4; ++attempt) {
    if (attempt > 1) {
      expected.push_back("Close");
      log.push_back(L"log: Retrying...(State: 6)");
    }
    expected.insert(expected.end(), {"SetProtocol 0", "Connect 10.0.0.7:5025"});
    log.insert(log.end(),
               {L"log: Connecting to 10.0.0.7 on port 5025...",
                L"log: Waiting for connection to be established...", L"log: Connection timeout..."});
  }
  EXPECT_EQ(socket_->calls, expected);
  EXPECT_EQ(Journal(), log);
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckConnecting);
}

TEST_F(CKespTCPInitializeTest, HostAnswersTheThirdTime_Connects) {
  SetTarget();
  socket_->on_connect = [&] {
    if (Attempts() == 3) socket_->ThenConnects();
  };
  EXPECT_EQ(Initialize(), Raised{});
  EXPECT_EQ(Attempts(), 3);
}

// Connected, too: without the event it is not enough.
TEST_F(CKespTCPInitializeTest, OtherStateAtTimeOut_IsNotRetried) {
  for (const auto state :
       {EKespTCPState::sckResolvingHost, EKespTCPState::sckHostResolved, EKespTCPState::sckConnected,
        EKespTCPState::sckClosing, EKespTCPState::sckClosed, EKespTCPState::sckError}) {
    SetTarget();
    socket_->calls.clear();
    socket_->on_connect = [&] { socket_->ThenEnters(state); };
    EXPECT_EQ(Initialize(), kTimeOut);
    EXPECT_EQ(Attempts(), 1);
  }
  EXPECT_THAT(Journal(), IsEmpty());
}

TEST_F(CKespTCPInitializeTest, SocketNotClosed_IsClosedFirstAndWaitedFor) {
  SetTarget();
  socket_->ThenEnters(EKespTCPState::sckError).Deliver();
  socket_->closing_reads = 5;
  LetConnect();
  const int pumps = fakes_.pump.count();
  EXPECT_TRUE(tcp_->Initialize());
  EXPECT_THAT(socket_->calls, ElementsAre("Close", "SetProtocol 0", "Connect 10.0.0.7:5025"));
  EXPECT_EQ(fakes_.pump.count(), pumps + 1);  // none while it waited for the closing
}

TEST_F(CKespTCPInitializeTest, SocketDoesNotClose_RaisesTimeOut) {
  SetTarget();
  StartLog();
  socket_->ThenEnters(EKespTCPState::sckConnecting).Deliver();
  socket_->closing_reads = 1000000;
  fakes_.clock.SetStepPerReading(10);
  const std::int32_t start = fakes_.clock.tick();
  EXPECT_EQ(Initialize(), (Raised{tcp_error::ERR_TIMEOUT, L"[CKespTCP - Initialize()]",
                                  L"Timeout waiting for connection to close"}));
  EXPECT_GE(Elapsed(start), 4000U);
  EXPECT_LE(Elapsed(start), 4200U);
  EXPECT_THAT(socket_->calls, ElementsAre("Close"));
  EXPECT_EQ(Journal().back(), L"log: Connection timeout...");
  EXPECT_EQ(fakes_.pump.count(), 0);
}

struct WaitCase {
  std::int16_t time_out_msecs;
  std::uint32_t millisecond_of_second;
  std::uint32_t waited;
};

// The wait ends when the calendar seconds that have begun exceed the time-out.
TEST_F(CKespTCPInitializeTest, Wait_CountsWholeCalendarSeconds) {
  SetTarget();
  socket_->on_connect = [this] { socket_->ThenFails(10061); };
  for (const WaitCase& wait : {WaitCase{3000, 0, 4000}, WaitCase{3000, 900, 3100}, WaitCase{2500, 0, 3000},
                               WaitCase{500, 500, 500}, WaitCase{0, 0, 1000}, WaitCase{-1, 0, 100}}) {
    tcp_->SetTimeOutmSecs(wait.time_out_msecs);
    fakes_.clock.SetMillisecondOfSecond(wait.millisecond_of_second);
    const std::int32_t start = fakes_.clock.tick();
    EXPECT_EQ(Initialize(), kTimeOut);
    EXPECT_EQ(Elapsed(start), wait.waited)
        << wait.time_out_msecs << " ms from " << wait.millisecond_of_second;
  }
}

TEST_F(CKespTCPInitializeTest, GreetingDuringConnect_DoesNotCountAsReply) {
  SetTarget();
  socket_->on_connect = [this] {
    socket_->Then([this] {
      socket_->ThenConnects().Deliver();
      socket_->Receive("hello\r");
    });
  };
  EXPECT_TRUE(tcp_->Initialize());
  tcp_->SetTimeOutmSecs(0);
  std::wstring result = L"old";
  EXPECT_EQ(RaisedBy([&] { tcp_->ReadLine(result); }).number, tcp_error::ERR_TIMEOUT);
  EXPECT_EQ(result, L"old");
}

TEST_F(CKespTCPInitializeTest, HandlerUninitializes_WaitEndsByTimeOut) {
  SetTarget();
  LetConnect();
  events_.handlers[L"ConnectEnd"] = [this] { EXPECT_TRUE(tcp_->Uninitialize()); };
  EXPECT_EQ(Initialize(), kTimeOut);
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckClosed);
}

TEST_F(CKespTCPInitializeTest, HandlerInitializesAgain_BothCallsSucceed) {
  SetTarget();
  LetConnect();
  bool nested = false;
  events_.handlers[L"ConnectBegin"] = [this, &nested] {
    if (std::exchange(nested, true)) return;
    EXPECT_TRUE(tcp_->Initialize());
  };
  EXPECT_TRUE(tcp_->Initialize());
  EXPECT_THAT(socket_->calls, ElementsAre("SetProtocol 0", "Connect 10.0.0.7:5025", "Close", "SetProtocol 0",
                                          "Connect 10.0.0.7:5025"));
}

TEST_F(CKespTCPInitializeTest, TargetChangedInHandler_NextAttemptUsesIt) {
  SetTarget();
  socket_->on_connect = [this] {
    socket_->Then([this] {
      tcp_->SetIPAddress(L"10.0.0.8");
      tcp_->SetPort(1);
    });
  };
  EXPECT_EQ(Initialize(), kTimeOut);
  EXPECT_EQ(socket_->calls.back(), "Connect 10.0.0.8:1");
}

TEST_F(CKespTCPInitializeTest, EventsTakenBackInHandler_NothingMoreIsRaised) {
  SetTarget();
  LetConnect();
  events_.handlers[L"ConnectBegin"] = [this] { tcp_->SetEvents(nullptr); };
  EXPECT_TRUE(tcp_->Initialize());
  EXPECT_THAT(Journal(), ElementsAre(L"ConnectBegin()"));
}

class CKespTCPUninitializeTest : public KespTCPFixture {};

TEST_F(CKespTCPUninitializeTest, Connected_ClosesOnceAndNeverConnectedDoesNotTouchTheSocket) {
  socket_->ThenEnters(EKespTCPState::sckConnecting).Deliver();
  EXPECT_TRUE(tcp_->Uninitialize());
  EXPECT_THAT(socket_->calls, IsEmpty());
  Connect();
  EXPECT_TRUE(tcp_->Uninitialize());
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckClosed);
  EXPECT_TRUE(tcp_->Uninitialize());
  EXPECT_THAT(socket_->calls, ElementsAre("Close"));
}

TEST_F(CKespTCPUninitializeTest, CloseFails_RaisesClosingAndStaysInitialized) {
  Connect();
  StartLog();
  socket_->FailCall(1, 10050);
  EXPECT_EQ(RaisedBy([&] { tcp_->Uninitialize(); }),
            (Raised{tcp_error::ERR_CLOSING, L"[CKespTCP - Uninitialize()]",
                    L"Unable to close connection (10050 - Network subsystem failed)"}));
  EXPECT_THAT(Journal(),
              ElementsAre(L"log: Unable to close connection to 10.0.0.7 on port 5025: 10050 - Network "
                          L"subsystem failed"));
  EXPECT_TRUE(tcp_->Initialize());
  EXPECT_TRUE(tcp_->Uninitialize());
  EXPECT_THAT(socket_->calls, ElementsAre("Close", "Close"));
}

class CKespTCPNotificationsTest : public KespTCPFixture {};

TEST_F(CKespTCPNotificationsTest, Error_PassesEverythingOnAndTakesWhatTheHandlerChanges) {
  Connect();
  StartLog();
  for (const wchar_t* const changed : {L"", L"gone"}) {
    events_.new_description = changed;
    socket_->ThenFails(10054).Deliver();
  }
  const std::wstring event =
      L"ErrorBegin(10054,The connection is reset by remote side,-2146818234,KespWinsock,,0,False)";
  EXPECT_THAT(
      Journal(),
      ElementsAre(event,
                  L"log: Error: 10054 - The connection is reset by remote side (-2146818234 KespWinsock) "
                  L"(10.0.0.7:5025)",
                  L"ErrorEnd()", event, L"log: Error: 10054 - gone (-2146818234 KespWinsock) (10.0.0.7:5025)",
                  L"ErrorEnd()"));
  EXPECT_EQ(socket_->last_error.description, L"gone");
  EXPECT_TRUE(socket_->last_error.cancel_display);
}

TEST_F(CKespTCPNotificationsTest, SendProgressAndComplete_RaiseTheirEventsAroundTheLogLines) {
  Connect();
  StartLog();
  socket_->ThenReportsSent(10, 3).ThenReportsSent(3, 0);
  fakes_.pump.PumpOnce();
  fakes_.pump.PumpOnce();
  EXPECT_THAT(
      Journal(),
      ElementsAre(L"SendProgressBegin(10,3)", L"log: Send Progress (10.0.0.7:5025) - Sent: 10 Remaining: 3",
                  L"SendProgressEnd()", L"SendProgressBegin(3,0)",
                  L"log: Send Progress (10.0.0.7:5025) - Sent: 3 Remaining: 0", L"SendProgressEnd()",
                  L"SendCompleteBegin()", L"log: Send complete (10.0.0.7:5025)", L"SendCompleteEnd()"));
}

TEST_F(CKespTCPNotificationsTest, NobodyListens_AreHandledAllTheSame) {
  tcp_->SetEvents(nullptr);
  Connect();
  StartLog();
  socket_->ThenReportsSent(1, 0).ThenPeerCloses();
  for (int i = 0; i < 2; ++i) fakes_.pump.PumpOnce();
  EXPECT_THAT(Journal(), ElementsAre(L"log: Send Progress (10.0.0.7:5025) - Sent: 1 Remaining: 0",
                                     L"log: Send complete (10.0.0.7:5025)", L"log: Close (10.0.0.7:5025)"));
}

// Whatever call of the socket fails, the object can be used again afterwards.
constexpr wchar_t kWrongThreadDescription[] =
    L"Called from the wrong thread: the socket's notifications go to the thread that connected first";

class CKespTCPThreadsTest : public KespTCPFixture {};

TEST_F(CKespTCPThreadsTest, OtherThread_WhatNeedsTheNotificationsIsRefusedAtOnce) {
  Connect();
  socket_->is_of_this_thread = false;
  const std::int32_t start = fakes_.clock.tick();
  std::wstring text = L"old";
  BinaryValue bytes;
  const auto refusal = [](const wchar_t* source) {
    return Raised{static_cast<std::int32_t>(0x8001010EU), source, kWrongThreadDescription};
  };
  EXPECT_EQ(RaisedBy([&] { tcp_->Initialize(); }), refusal(L"[CKespTCP - Initialize()]"));
  EXPECT_EQ(RaisedBy([&] { tcp_->WriteLine(L"x"); }), refusal(L"[CKespTCP - WriteLine()]"));
  EXPECT_EQ(RaisedBy([&] { tcp_->ReadLine(text); }), refusal(L"[CKespTCP - ReadLine()]"));
  EXPECT_EQ(RaisedBy([&] { tcp_->ReadLineBinary(bytes); }), refusal(L"[CKespTCP - ReadLineBinary()]"));
  EXPECT_EQ(text, L"old");
  EXPECT_EQ(RaisedBy([&] { tcp_->AutoDetect(text); }), refusal(L"[CKespTCP - AutoDetect()]"));
  EXPECT_EQ(text, L"");
  EXPECT_EQ(tcp_->TimeOutmSecs(), 3000);
  EXPECT_EQ(fakes_.clock.tick(), start);
  EXPECT_TRUE(Journal().empty());
  EXPECT_EQ(RaisedBy([&] { tcp_->Uninitialize(); }), refusal(L"[CKespTCP - Uninitialize()]"));
  EXPECT_EQ(socket_->calls, Calls{}) << "the connection is left to the thread that has it";
}

TEST_F(CKespTCPThreadsTest, OtherThread_NotConnected_UninitializeHasNothingToDo) {
  socket_->is_of_this_thread = false;
  EXPECT_TRUE(tcp_->Uninitialize());
}

}  // namespace
}  // namespace kesp
