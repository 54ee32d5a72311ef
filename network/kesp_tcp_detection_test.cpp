// Unit tests of detection over TCP: the commands in turn, events and Abort, and what is left behind.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "network/kesp_tcp_fixture.h"

namespace kesp {
namespace {

class KespTCPDetectionTest : public KespTCPFixture {
 protected:
  KespTCPDetectionTest() {
    SetTarget();
    tcp_->SetTimeOutmSecs(5000);
    tcp_->SetIPType(EIPType::ipDynamic);
  }

  // Every attempt to connect succeeds; replies_ has the answers, other commands get none.
  void LetAnswer() {
    socket_->on_connect = [this] { socket_->ThenConnects(); };
    socket_->on_send = [this](const std::string& command) {
      asked_.push_back(command);
      if (replies_.contains(command)) socket_->ThenReceives(replies_[command]);
    };
  }

  bool Detect(EDetectLevel level = EDetectLevel::dlAllCommands) { return tcp_->AutoDetect(result_, level); }

  void ExpectRestored() {
    EXPECT_EQ(tcp_->TimeOutmSecs(), 5000);
    EXPECT_EQ(tcp_->IPType(), EIPType::ipDynamic);
    EXPECT_EQ(tcp_->Protocol(), EKespProtocol::sckTCPProtocol);
    EXPECT_EQ(tcp_->IPAddress(), L"10.0.0.7");
    EXPECT_EQ(tcp_->Port(), 5025);
    EXPECT_EQ(Journal().back(), L"AutoDetectEnd()");
  }

  std::map<std::string, std::string> replies_;
  Calls asked_;
  std::wstring result_ = L"before";
};

TEST_F(KespTCPDetectionTest, FirstCommandIsAnswered_FoundAndTheConnectionStaysOpen) {
  LetAnswer();
  replies_ = {{"*IDN?\r", "KESP,7100,SIM1,1.0\r"}};
  EXPECT_TRUE(Detect());
  EXPECT_EQ(result_, L"KESP,7100,SIM1,1.0");
  EXPECT_EQ(asked_, (Calls{"*IDN?\r"}));
  EXPECT_EQ(Journal(), (Lines{L"AutoDetectBegin()", L"ConnectBegin()", L"ConnectEnd()",
                              L"AutoDetectUpdate(*IDN?,10.0.0.7,5025,False)", L"DataArrivalBegin(19)",
                              L"DataArrivalEnd()", L"AutoDetectEnd()"}));
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckConnected);
  ExpectRestored();
}

TEST_F(KespTCPDetectionTest, LaterCommandIsAnswered_TheEarlierOnesWereTriedOnTheSameConnection) {
  LetAnswer();
  replies_ = {{"t\r", "21.5\r"}};
  EXPECT_TRUE(Detect());
  EXPECT_EQ(result_, L"21.5");
  EXPECT_EQ(asked_, (Calls{"*IDN?\r", "*VER\r", "t\r"}));
  EXPECT_EQ(socket_->calls,
            (Calls{"SetProtocol 0", "Connect 10.0.0.7:5025", "SendData", "SendData", "SendData", "GetData"}));
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckConnected);
  ExpectRestored();
}

TEST_F(KespTCPDetectionTest, Level_DecidesWhichCommandsAreTried) {
  const Calls all{"*IDN?\r", "*VER\r", "t\r"};
  for (const auto& [level, count] :
       std::vector<std::pair<int, int>>{{-1, 0}, {0, 0}, {1, 1}, {2, 2}, {3, 3}, {4, 3}}) {
    LetAnswer();
    asked_.clear();
    EXPECT_FALSE(Detect(static_cast<EDetectLevel>(level)));
    EXPECT_EQ(asked_, Calls(all.begin(), all.begin() + count)) << level;
    EXPECT_EQ(result_, L"") << level;
  }
}

TEST_F(KespTCPDetectionTest, LevelLeftOut_IsAllCommands) {
  LetAnswer();
  EXPECT_FALSE(tcp_->AutoDetect(result_));
  EXPECT_EQ(asked_.size(), 3U);
}

TEST_F(KespTCPDetectionTest, NothingAnswers_EachReadTakesOneSecondAndTheConnectionStaysOpen) {
  LetAnswer();
  fakes_.clock.SetMillisecondOfSecond(0);
  const std::int32_t start = fakes_.clock.tick();
  EXPECT_FALSE(Detect());
  // More than one second by the calendar: two steps of it for each of the three commands.
  EXPECT_GE(Elapsed(start), 3U * 1100U);
  EXPECT_LE(Elapsed(start), 3U * 2000U + 500U);
  EXPECT_EQ(result_, L"");
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckConnected);
  ExpectRestored();
  EXPECT_EQ(socket_->calls,
            (Calls{"SetProtocol 0", "Connect 10.0.0.7:5025", "SendData", "SendData", "SendData"}));
}

TEST_F(KespTCPDetectionTest, NothingAnswersOnAConnectionOfTheClient_ItIsNotTouched) {
  Connect();
  LetAnswer();
  EXPECT_FALSE(Detect());
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckConnected);
  EXPECT_EQ(socket_->calls, (Calls{"SendData", "SendData", "SendData"}));
}

TEST_F(KespTCPDetectionTest, FirstCommandIsAnsweredOnAConnectionOfTheClient_ItIsNotTouched) {
  Connect();
  LetAnswer();
  replies_ = {{"*IDN?\r", "KESP\r"}};
  EXPECT_TRUE(Detect());
  EXPECT_EQ(socket_->calls, (Calls{"SendData", "GetData"}));
}

TEST_F(KespTCPDetectionTest, LateAnswer_CountsForTheNextCommandAndTheRestComesWithTheNextReply) {
  LetAnswer();
  socket_->on_send = [this](const std::string& command) {
    asked_.push_back(command);
    // It answers each command only when the next one has come.
    if (asked_.size() > 1) socket_->ThenReceives("late " + asked_[asked_.size() - 2]);
  };
  EXPECT_TRUE(Detect());
  EXPECT_EQ(result_, L"late *IDN?");
  EXPECT_EQ(asked_, (Calls{"*IDN?\r", "*VER\r"}));
  EXPECT_EQ(std::count(socket_->calls.begin(), socket_->calls.end(), "Close"), 0);
  EXPECT_TRUE(tcp_->WriteLine(L"MEAS?"));
  std::wstring reply;
  EXPECT_TRUE(tcp_->ReadLine(reply));
  EXPECT_EQ(reply, L"late *VER");
}

TEST_F(KespTCPDetectionTest, OpenConnectionLeadsElsewhere_TheAddressThatIsSetIsAsked) {
  Connect();
  LetAnswer();
  replies_ = {{"*IDN?\r", "KESP\r"}};
  for (const auto& [address, port] : {std::pair{L"10.0.0.8", 5025}, std::pair{L"10.0.0.8", 5026}}) {
    tcp_->SetIPAddress(address);
    tcp_->SetPort(static_cast<std::int16_t>(port));
    socket_->calls.clear();
    EXPECT_TRUE(Detect());
    EXPECT_EQ(socket_->calls, (Calls{"Close", "SetProtocol 0", "Connect 10.0.0.8:" + std::to_string(port),
                                     "SendData", "GetData"}));
  }
}

TEST_F(KespTCPDetectionTest, PeerOfTheOpenConnectionHasGone_ItIsMadeAnew) {
  Connect();
  socket_->ThenPeerCloses().Deliver();
  LetAnswer();
  replies_ = {{"*IDN?\r", "KESP\r"}};
  EXPECT_TRUE(Detect());
  EXPECT_EQ(result_, L"KESP");
}

TEST_F(KespTCPDetectionTest, HandlerOfTheBeginningChangesTheProtocol_ItCounts) {
  events_.handlers[L"AutoDetectBegin"] = [this] { tcp_->SetProtocol(EKespProtocol::sckUDPProtocol); };
  EXPECT_FALSE(Detect());
  EXPECT_EQ(socket_->calls[0], "SetProtocol 1");
  ExpectRestored();
}

TEST_F(KespTCPDetectionTest, Events_TellTheSettingsOfTheSearch) {
  LetAnswer();
  std::vector<std::int16_t> seen;
  events_.handlers[L"AutoDetectBegin"] = [&] { seen.push_back(tcp_->TimeOutmSecs()); };
  events_.handlers[L"AutoDetectEnd"] = [&] { seen.push_back(tcp_->TimeOutmSecs()); };
  Detect(EDetectLevel::dlSCPIOnly);
  EXPECT_EQ(seen, (std::vector<std::int16_t>{1000, 5000}));
}

TEST_F(KespTCPDetectionTest, Abort_StopsBeforeTheCommandIsSent) {
  LetAnswer();
  events_.abort_at = L"*VER";
  replies_ = {{"*VER\r", "1.0\r"}, {"t\r", "21.5\r"}};
  EXPECT_FALSE(Detect());
  EXPECT_EQ(asked_, (Calls{"*IDN?\r"}));
  EXPECT_EQ(result_, L"");
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckConnected);
  ExpectRestored();
}

TEST_F(KespTCPDetectionTest, ConnectionRefused_FindsNothing) {
  socket_->on_connect = [this] { socket_->ThenFails(10061); };
  EXPECT_FALSE(Detect());
  EXPECT_EQ(result_, L"");
  ExpectRestored();
}

TEST_F(KespTCPDetectionTest, ConnectFailsAtOnce_FindsNothing) {
  socket_->FailCall(2, 10049);  // Connect, behind SetProtocol
  EXPECT_FALSE(Detect());
  EXPECT_EQ(Journal(), (Lines{L"AutoDetectBegin()", L"AutoDetectEnd()"}));
  ExpectRestored();
}

TEST_F(KespTCPDetectionTest, HostIsSilent_FourAttemptsOfOneSecond) {
  const std::int32_t start = fakes_.clock.tick();
  EXPECT_FALSE(Detect());
  EXPECT_EQ(std::count(socket_->calls.begin(), socket_->calls.end(), "Connect 10.0.0.7:5025"), 4);
  EXPECT_LE(Elapsed(start), 4U * 2000U + 500U);
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckClosed);
  ExpectRestored();
}

TEST_F(KespTCPDetectionTest, AddressMissing_RaisesWithEverythingRestored) {
  tcp_->SetIPAddress(L"0.0.0.0");
  EXPECT_EQ(RaisedBy([&] { Detect(); }),
            (Raised{tcp_error::ERR_INVALID_IP_ADDRESS, L"[CKespTCP - Initialize()]", L"Invalid IP Address"}));
  tcp_->SetIPAddress(L"10.0.0.7");
  EXPECT_EQ(result_, L"");
  ExpectRestored();
}

TEST_F(KespTCPDetectionTest, SendingFails_TheNextCommandIsTried) {
  LetAnswer();
  replies_ = {{"*VER\r", "1.0\r"}};
  events_.handlers[L"ConnectEnd"] = [this] { socket_->FailCall(1, 10053); };
  EXPECT_TRUE(Detect());
  EXPECT_EQ(result_, L"1.0");
}

TEST_F(KespTCPDetectionTest, InvalidCharacters_TheNextCommandIsTriedAndNothingIsLeftOfThem) {
  LetAnswer();
  replies_ = {{"*IDN?\r", "\xC8\r"}};
  EXPECT_FALSE(Detect(EDetectLevel::dlSCPIOnly));
  EXPECT_EQ(result_, L"");
  replies_["*VER\r"] = "1.0\r";
  EXPECT_TRUE(Detect());
  EXPECT_EQ(result_, L"1.0");
}

TEST_F(KespTCPDetectionTest, PeerCloses_NothingIsFoundAtOnceAndNothingCountsAsConnected) {
  LetAnswer();
  events_.handlers[L"ConnectEnd"] = [this] { socket_->ThenPeerCloses(); };
  const std::int32_t start = fakes_.clock.tick();
  EXPECT_FALSE(Detect());
  EXPECT_LE(Elapsed(start), 2000U + 500U);
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckClosed);
  EXPECT_EQ(std::count(socket_->calls.begin(), socket_->calls.end(), "Connect 10.0.0.7:5025"), 1);
  socket_->calls.clear();
  EXPECT_TRUE(tcp_->Initialize());
  EXPECT_EQ(socket_->calls, (Calls{"SetProtocol 0", "Connect 10.0.0.7:5025"}));
}

TEST_F(KespTCPDetectionTest, HandlerChangesTheSettings_TheyAreRestoredAllTheSame) {
  LetAnswer();
  events_.handlers[L"ConnectEnd"] = [this] {
    tcp_->SetTimeOutmSecs(1);
    tcp_->SetIPType(EIPType::ipStatic);
    tcp_->SetProtocol(EKespProtocol::sckUDPProtocol);
  };
  Detect(EDetectLevel::dlSCPIOnly);
  ExpectRestored();
}

TEST_F(KespTCPDetectionTest, UnknownProtocol_FindsNothing) {
  tcp_->SetProtocol(static_cast<EKespProtocol>(7));
  socket_->FailCall(1, 40014);
  EXPECT_FALSE(Detect());
  EXPECT_EQ(tcp_->Protocol(), static_cast<EKespProtocol>(7));
}

TEST_F(KespTCPDetectionTest, Log_IsThatOfConnectionAndLines) {
  LetAnswer();
  StartLog();
  socket_->FailCall(2, 10049);
  Detect();
  EXPECT_EQ(Journal(), (Lines{L"AutoDetectBegin()", L"log: Initialize()", L"log: Check IP Address...",
                              L"log: Check Port...", L"log: Connecting to 10.0.0.7 on port 5025...",
                              L"log: Unable to establish connection to 10.0.0.7 on port 5025: 10049 - " +
                                  SocketErrorDescription(10049),
                              L"AutoDetectEnd()"}));
}

TEST_F(KespTCPDetectionTest, LogOfAnAnswer_EndsWithItsArrival) {
  Connect();
  LetAnswer();
  StartLog();
  replies_ = {{"*IDN?\r", "A\r"}};
  EXPECT_TRUE(Detect());
  EXPECT_EQ(Journal(),
            (Lines{L"AutoDetectBegin()", L"log: Initialize()", L"log: Initialize() Done...",
                   L"AutoDetectUpdate(*IDN?,10.0.0.7,5025,False)",
                   L"log: DataArrival (10.0.0.7:5025) Bytes: 2", L"DataArrivalBegin(2)",
                   L"log: Socket Data arrived: <A\r> (length: 2  last byte: 13 EOS: 13 EOS?: True)",
                   L"DataArrivalEnd()", L"AutoDetectEnd()"}));
}

class KespTCPDetectionWithoutATarget : public KespTCPFixture {};

TEST_F(KespTCPDetectionWithoutATarget, PortMissing_RaisesWithTheTimeOutRestored) {
  std::wstring result = L"before";
  tcp_->SetIPAddress(L"10.0.0.7");
  EXPECT_EQ(RaisedBy([&] { tcp_->AutoDetect(result); }),
            (Raised{tcp_error::ERR_INVALID_PORT, L"[CKespTCP - Initialize()]", L"Invalid Port"}));
  EXPECT_EQ(result, L"");
  EXPECT_EQ(tcp_->TimeOutmSecs(), 3000);
  EXPECT_EQ(Journal(), (Lines{L"AutoDetectBegin()", L"AutoDetectEnd()"}));
}

}  // namespace
}  // namespace kesp
