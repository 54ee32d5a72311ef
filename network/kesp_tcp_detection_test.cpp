// Unit tests of detection over TCP: the commands in turn, events and Abort, and what is left behind.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "network/kesp_tcp_fixture.h"

namespace kesp {
namespace {

// Every attempt to connect succeeds; replies_ has the answers, other commands get none.
class CKespTCPDetectionTest : public KespTCPFixture {
 protected:
  CKespTCPDetectionTest() {
    SetTarget();
    tcp_->SetTimeOutmSecs(5000);
    tcp_->SetIPType(EIPType::ipDynamic);
    fakes_.clock.SetMillisecondOfSecond(0);
    LetAnswer();
  }

  void LetAnswer() {
    socket_->on_connect = [this] { socket_->ThenConnects(); };
    socket_->on_send = [this](const std::string& command) {
      asked_.push_back(command);
      if (replies_.contains(command)) socket_->ThenReceives(replies_[command]);
    };
  }
  // A connection that the client made.
  void ConnectBefore() {
    Connect();
    LetAnswer();
  }

  bool Detect(EDetectLevel level = EDetectLevel::dlAllCommands) { return tcp_->AutoDetect(result_, level); }

  void ExpectFound(const std::wstring& answer) {
    EXPECT_TRUE(Detect());
    EXPECT_EQ(result_, answer);
    ExpectRestored();
  }
  void ExpectNothingFound() {
    EXPECT_FALSE(Detect());
    EXPECT_EQ(result_, L"");
    ExpectRestored();
  }
  void ExpectRestored() {
    EXPECT_EQ(tcp_->TimeOutmSecs(), 5000);
    EXPECT_EQ(tcp_->IPType(), EIPType::ipDynamic);
    EXPECT_EQ(tcp_->Protocol(), EKespProtocol::sckTCPProtocol);
    EXPECT_EQ(tcp_->IPAddress(), L"10.0.0.7");
    EXPECT_EQ(tcp_->Port(), 5025);
    EXPECT_EQ(Journal().back(), L"AutoDetectEnd()");
  }
  std::ptrdiff_t Attempts() const {
    return std::count(socket_->calls.begin(), socket_->calls.end(), "Connect 10.0.0.7:5025");
  }

  std::map<std::string, std::string> replies_;
  Calls asked_;
  std::wstring result_ = L"before";
};

TEST_F(CKespTCPDetectionTest, FirstCommandIsAnswered_FoundAndTheConnectionStaysOpen) {
  replies_ = {{"*IDN?\r", "KESP,7100,SIM1,1.0\r"}};
  ExpectFound(L"KESP,7100,SIM1,1.0");
  EXPECT_EQ(asked_, (Calls{"*IDN?\r"}));
  EXPECT_EQ(Journal(), (Lines{L"AutoDetectBegin()", L"ConnectBegin()", L"ConnectEnd()",
                              L"AutoDetectUpdate(*IDN?,10.0.0.7,5025,False)", L"DataArrivalBegin(19)",
                              L"DataArrivalEnd()", L"AutoDetectEnd()"}));
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckConnected);
}

TEST_F(CKespTCPDetectionTest, LaterCommandIsAnswered_TheEarlierOnesWereTriedOnTheSameConnection) {
  replies_ = {{"t\r", "21.5\r"}};
  ExpectFound(L"21.5");
  EXPECT_EQ(asked_, (Calls{"*IDN?\r", "*VER\r", "t\r"}));
  EXPECT_EQ(socket_->calls,
            (Calls{"SetProtocol 0", "Connect 10.0.0.7:5025", "SendData", "SendData", "SendData", "GetData"}));
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckConnected);
}

TEST_F(CKespTCPDetectionTest, Level_DecidesWhichCommandsAreTried) {
  const Calls all{"*IDN?\r", "*VER\r", "t\r"};
  for (const auto& [level, count] :
       std::vector<std::pair<int, int>>{{-1, 0}, {0, 0}, {1, 1}, {2, 2}, {3, 3}, {4, 3}}) {
    asked_.clear();
    EXPECT_FALSE(Detect(static_cast<EDetectLevel>(level)));
    EXPECT_EQ(asked_, Calls(all.begin(), all.begin() + count)) << level;
    EXPECT_EQ(result_, L"") << level;
  }
  asked_.clear();
  EXPECT_FALSE(tcp_->AutoDetect(result_));
  EXPECT_EQ(asked_, all) << "the level left out";
}

TEST_F(CKespTCPDetectionTest, NothingAnswers_EachReadTakesOneSecondAndTheConnectionStaysOpen) {
  const std::int32_t start = fakes_.clock.tick();
  ExpectNothingFound();
  // More than one second by the calendar: two steps of it for each of the three commands.
  EXPECT_GE(Elapsed(start), 3U * 1100U);
  EXPECT_LE(Elapsed(start), 3U * 2000U + 500U);
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckConnected);
  EXPECT_EQ(socket_->calls,
            (Calls{"SetProtocol 0", "Connect 10.0.0.7:5025", "SendData", "SendData", "SendData"}));
}

TEST_F(CKespTCPDetectionTest, ConnectionOfTheClient_IsUsedAndNotTouched) {
  ConnectBefore();
  ExpectNothingFound();
  replies_ = {{"*IDN?\r", "KESP\r"}};
  ExpectFound(L"KESP");
  EXPECT_EQ(socket_->calls, (Calls{"SendData", "SendData", "SendData", "SendData", "GetData"}));
}

TEST_F(CKespTCPDetectionTest, LateAnswer_CountsForTheNextCommandAndTheRestComesWithTheNextReply) {
  socket_->on_send = [this](const std::string& command) {
    asked_.push_back(command);
    // It answers each command only when the next one has come.
    if (asked_.size() > 1) socket_->ThenReceives("late " + asked_[asked_.size() - 2]);
  };
  ExpectFound(L"late *IDN?");
  EXPECT_EQ(asked_, (Calls{"*IDN?\r", "*VER\r"}));
  EXPECT_EQ(std::count(socket_->calls.begin(), socket_->calls.end(), "Close"), 0);
  EXPECT_TRUE(tcp_->WriteLine(L"MEAS?"));
  std::wstring reply;
  EXPECT_TRUE(tcp_->ReadLine(reply));
  EXPECT_EQ(reply, L"late *VER");
}

TEST_F(CKespTCPDetectionTest, OpenConnectionLeadsElsewhere_TheAddressThatIsSetIsAsked) {
  ConnectBefore();
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

TEST_F(CKespTCPDetectionTest, PeerOfTheOpenConnectionHasGone_ItIsMadeAnew) {
  ConnectBefore();
  socket_->ThenPeerCloses().Deliver();
  replies_ = {{"*IDN?\r", "KESP\r"}};
  ExpectFound(L"KESP");
}

TEST_F(CKespTCPDetectionTest, HandlerOfTheBeginningChangesTheProtocol_ItCounts) {
  socket_->on_connect = nullptr;
  events_.handlers[L"AutoDetectBegin"] = [this] { tcp_->SetProtocol(EKespProtocol::sckUDPProtocol); };
  ExpectNothingFound();
  EXPECT_EQ(socket_->calls[0], "SetProtocol 1");
}

TEST_F(CKespTCPDetectionTest, Events_TellTheSettingsOfTheSearch) {
  std::vector<std::int16_t> seen;
  events_.handlers[L"AutoDetectBegin"] = [&] { seen.push_back(tcp_->TimeOutmSecs()); };
  events_.handlers[L"AutoDetectEnd"] = [&] { seen.push_back(tcp_->TimeOutmSecs()); };
  Detect(EDetectLevel::dlSCPIOnly);
  EXPECT_EQ(seen, (std::vector<std::int16_t>{1000, 5000}));
}

TEST_F(CKespTCPDetectionTest, Abort_StopsBeforeTheCommandIsSent) {
  events_.abort_at = L"*VER";
  replies_ = {{"*VER\r", "1.0\r"}, {"t\r", "21.5\r"}};
  ExpectNothingFound();
  EXPECT_EQ(asked_, (Calls{"*IDN?\r"}));
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckConnected);
}

TEST_F(CKespTCPDetectionTest, ConnectionRefused_FindsNothing) {
  socket_->on_connect = [this] { socket_->ThenFails(10061); };
  ExpectNothingFound();
}

TEST_F(CKespTCPDetectionTest, ConnectFailsAtOnce_FindsNothingAndIsLogged) {
  StartLog();
  socket_->FailCall(2, 10049);  // Connect, behind SetProtocol
  ExpectNothingFound();
  EXPECT_EQ(Journal(), (Lines{L"AutoDetectBegin()", L"log: Initialize()", L"log: Check IP Address...",
                              L"log: Check Port...", L"log: Connecting to 10.0.0.7 on port 5025...",
                              L"log: Unable to establish connection to 10.0.0.7 on port 5025: 10049 - " +
                                  SocketErrorDescription(10049),
                              L"AutoDetectEnd()"}));
}

TEST_F(CKespTCPDetectionTest, HostIsSilent_FourAttemptsOfOneSecond) {
  socket_->on_connect = nullptr;
  const std::int32_t start = fakes_.clock.tick();
  ExpectNothingFound();
  EXPECT_EQ(Attempts(), 4);
  EXPECT_LE(Elapsed(start), 4U * 2000U + 500U);
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckClosed);
}

TEST_F(CKespTCPDetectionTest, AddressMissing_RaisesWithEverythingRestored) {
  tcp_->SetIPAddress(L"0.0.0.0");
  EXPECT_EQ(RaisedBy([&] { Detect(); }),
            (Raised{tcp_error::ERR_INVALID_IP_ADDRESS, L"[CKespTCP - Initialize()]", L"Invalid IP Address"}));
  tcp_->SetIPAddress(L"10.0.0.7");
  EXPECT_EQ(result_, L"");
  EXPECT_EQ(Journal(), (Lines{L"AutoDetectBegin()", L"AutoDetectEnd()"}));
  ExpectRestored();
}

// What a port that was never set raises goes on as well.
class CKespTCPDetectionWithoutATargetTest : public KespTCPFixture {};

TEST_F(CKespTCPDetectionWithoutATargetTest, PortMissing_Raises) {
  std::wstring result;
  tcp_->SetIPAddress(L"10.0.0.7");
  EXPECT_EQ(RaisedBy([&] { tcp_->AutoDetect(result); }).number, tcp_error::ERR_INVALID_PORT);
}

TEST_F(CKespTCPDetectionTest, SendingFails_TheNextCommandIsTried) {
  replies_ = {{"*VER\r", "1.0\r"}};
  events_.handlers[L"ConnectEnd"] = [this] { socket_->FailCall(1, 10053); };
  ExpectFound(L"1.0");
}

TEST_F(CKespTCPDetectionTest, InvalidCharacters_TheNextCommandIsTriedAndNothingIsLeftOfThem) {
  replies_ = {{"*IDN?\r", "\xC8\r"}};
  EXPECT_FALSE(Detect(EDetectLevel::dlSCPIOnly));
  EXPECT_EQ(result_, L"");
  replies_["*VER\r"] = "1.0\r";
  ExpectFound(L"1.0");
}

TEST_F(CKespTCPDetectionTest, PeerCloses_NothingIsFoundAtOnceAndNothingCountsAsConnected) {
  events_.handlers[L"ConnectEnd"] = [this] { socket_->ThenPeerCloses(); };
  const std::int32_t start = fakes_.clock.tick();
  ExpectNothingFound();
  EXPECT_LE(Elapsed(start), 2000U + 500U);
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckClosed);
  EXPECT_EQ(Attempts(), 1);
  socket_->calls.clear();
  EXPECT_TRUE(tcp_->Initialize());
  EXPECT_EQ(socket_->calls, (Calls{"SetProtocol 0", "Connect 10.0.0.7:5025"}));
}

TEST_F(CKespTCPDetectionTest, HandlerClosesTheConnection_TheOtherCommandsAreTriedInVain) {
  int trials = 0;
  events_.handlers[L"AutoDetectUpdate"] = [&] {
    ++trials;
    EXPECT_TRUE(tcp_->Uninitialize());
  };
  ExpectNothingFound();
  EXPECT_EQ(trials, 3);
}

TEST_F(CKespTCPDetectionTest, HandlerChangesTheSettings_TheyAreRestoredAllTheSame) {
  events_.handlers[L"ConnectEnd"] = [this] {
    tcp_->SetTimeOutmSecs(1);
    tcp_->SetIPType(EIPType::ipStatic);
    tcp_->SetProtocol(EKespProtocol::sckUDPProtocol);
  };
  ExpectNothingFound();
}

TEST_F(CKespTCPDetectionTest, UnknownProtocol_FindsNothing) {
  tcp_->SetProtocol(static_cast<EKespProtocol>(7));
  socket_->FailCall(1, 40014);
  EXPECT_FALSE(Detect());
  EXPECT_EQ(tcp_->Protocol(), static_cast<EKespProtocol>(7));
}

TEST_F(CKespTCPDetectionTest, LogOfAnAnswer_EndsWithItsArrival) {
  ConnectBefore();
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

}  // namespace
}  // namespace kesp
