// Unit tests of the broadcast and of what becomes of the answers to it.
#include <gtest/gtest.h>

#include "network/counting_instrument_fake.h"
#include "network/kesp_tcp_discovery_fixture.h"

namespace kesp {
namespace {

class CKespTCPDiscoveryTest : public KespTCPDiscoveryFixture {};

TEST_F(CKespTCPDiscoveryTest, NobodyAnswers_NothingIsFoundAfterOneToTwoSecondsOfTheBroadcast) {
  const std::int32_t start = fakes_.clock.tick();
  EXPECT_FALSE(Discover());
  EXPECT_GE(Elapsed(start), 1000U);
  EXPECT_LE(Elapsed(start), 2000U + kPumpMilliseconds);
  EXPECT_EQ(socket_->calls, (Calls{"SetProtocol 1", "Connect 255.255.255.255:30718", "SendData", "Close"}));
  EXPECT_EQ(socket_->sent, std::string("\x00\x01\x00\xF6", 4));
  EXPECT_EQ(Count(), 0);
  // Only a search that found something moves these.
  EXPECT_EQ(tcp_->IPAddress(), L"10.9.9.9");
  EXPECT_EQ(tcp_->Port(), 1234);
  ExpectRestored();
}

TEST_F(CKespTCPDiscoveryTest, OneAnswers_EveryStepIsLogged) {
  PlaceInstrument(7, "KESP,7100,SIM1,1.0");
  StartLog();
  EXPECT_TRUE(Discover());
  EXPECT_EQ(
      Journal(),
      (Lines{
          L"AutoDetectBegin()",
          L"log: Sending broadcast command to 255.255.255.255 on port 30718...",
          L"log: DataArrival (255.255.255.255:30718) Bytes: 10",
          L"DataArrivalBegin(10)",
          L"log: Receiving from 10.0.0.7:30718",
          L"log: Received buffer data: " + SystemCodePage().FromBytes(kDiscoveryReply),
          L"log: Stored object for discovered device at 10.0.0.7",
          L"log: Socket Data arrived: <" + SystemCodePage().FromBytes(kDiscoveryReply) +
              L"> (length: 10  last byte: 111 EOS: 13 EOS?: True)",
          L"DataArrivalEnd()",
          L"log: UDP discovery successful. Found 1 devices.",
          L"log: Initialize()",
          L"log: Check IP Address...",
          L"log: Check Port...",
          L"log: Connecting to 10.0.0.7 on port 10001...",
          L"log: Waiting for connection to be established...",
          L"ConnectBegin()",
          L"log: Connect (10.0.0.7:10001)",
          L"ConnectEnd()",
          L"log: Initialize() Done...",
          L"log: DataArrival (10.0.0.7:10001) Bytes: 19",
          L"DataArrivalBegin(19)",
          L"log: Socket Data arrived: <KESP,7100,SIM1,1.0\r> (length: 19  last byte: 13 EOS: 13 EOS?: True)",
          L"DataArrivalEnd()",
          L"AutoDetectEnd()"}));
  EXPECT_EQ(Devices(), (Lines{L"10.0.0.7/7100/SIM1"}));
  ExpectRestored();
}

TEST_F(CKespTCPDiscoveryTest, Mark_CountsAnywhereInTheAnswer) {
  Answers(SenderAt(1), "\xF7");
  Answers(SenderAt(2), "\xF7 at the beginning");
  Answers(SenderAt(3), "in the \xF7 middle");
  Answers(SenderAt(4), "at the end \xF7");
  Answers(SenderAt(5), std::string(65506, '\0') + '\xF7');
  EXPECT_TRUE(Discover());
  EXPECT_EQ(Devices(), (Lines{L"10.0.0.1//", L"10.0.0.2//", L"10.0.0.3//", L"10.0.0.4//", L"10.0.0.5//"}));
}

TEST_F(CKespTCPDiscoveryTest, DatagramsWithoutTheMark_AreLoggedAndNoInstruments) {
  StartLog();
  Answers(SenderAt(1), "");
  Answers(SenderAt(2), "x");
  Answers(SenderAt(3), std::string(65507, '\xF6'));
  Answers(SenderAt(4), std::string("\x00\x01\x00\xF6", 4));  // the query's own echo
  EXPECT_FALSE(Discover());
  EXPECT_EQ(Count(), 0);
  EXPECT_EQ(LinesFrom(L"log: Receiving from"),
            (Lines{L"log: Receiving from 10.0.0.1:30718", L"log: Receiving from 10.0.0.2:30718",
                   L"log: Receiving from 10.0.0.3:30718", L"log: Receiving from 10.0.0.4:30718"}));
  EXPECT_EQ(LinesFrom(L"log: Received buffer data: ").size(), 4U);
  EXPECT_EQ(LinesFrom(L"log: Stored"), Lines{});
  EXPECT_EQ(LinesFrom(L"log: UDP discovery"), Lines{});
  ExpectRestored();
}

TEST_F(CKespTCPDiscoveryTest, Answers_CountUntilTheTimeIsOver) {
  Answers(SenderAt(1));
  for (int i = 0; i < 8; ++i) Answers(SenderAt(99), "noise");
  Answers(SenderAt(2));  // 1 s after the broadcast
  for (int i = 0; i < 30; ++i) Answers(SenderAt(99), "noise");
  Answers(SenderAt(3));  // too late
  EXPECT_TRUE(Discover());
  EXPECT_EQ(Devices(), (Lines{L"10.0.0.1//", L"10.0.0.2//"}));
}

TEST_F(CKespTCPDiscoveryTest, SameAddressTwice_OneInstrumentAndOneLineAboutIt) {
  StartLog();
  Answers(SenderAt(1));
  Answers(SenderAt(2));
  Answers(SenderAt(1, 4711), "another \xF7 text");
  EXPECT_TRUE(Discover());
  EXPECT_EQ(Devices(), (Lines{L"10.0.0.1//", L"10.0.0.2//"}));
  EXPECT_EQ(LinesFrom(L"log: Duplicate device"), (Lines{L"log: Duplicate device: 10.0.0.1"}));
  EXPECT_EQ(LinesFrom(L"log: Stored"), (Lines{L"log: Stored object for discovered device at 10.0.0.1",
                                              L"log: Stored object for discovered device at 10.0.0.2"}));
  EXPECT_EQ(LinesFrom(L"log: Receiving"),
            (Lines{L"log: Receiving from 10.0.0.1:30718", L"log: Receiving from 10.0.0.2:30718",
                   L"log: Receiving from 10.0.0.1:4711"}));
  EXPECT_EQ(LinesFrom(L"log: UDP"), (Lines{L"log: UDP discovery successful. Found 2 devices."}));
}

TEST_F(CKespTCPDiscoveryTest, SecondDiscovery_AddsOnlyNewSendersAndAsksAllAgain) {
  PlaceInstrument(1, "KESP,7100,SIM1,1.0");
  EXPECT_TRUE(Discover());
  const std::shared_ptr<Instrument> first = tcp_->Devices()->Item(1);
  StartLog();
  identities_[L"10.0.0.1"] = "KESP,7100,SIM99,1.0\r";
  EXPECT_TRUE(Discover()) << "only the known one answers";
  PlaceInstrument(2, "KESP,7200,SIM2,1.0");
  EXPECT_TRUE(Discover());
  EXPECT_EQ(Devices(), (Lines{L"10.0.0.1/7100/SIM99", L"10.0.0.2/7200/SIM2"}));
  EXPECT_EQ(tcp_->Devices()->Item(1), first);
  EXPECT_EQ(LinesFrom(L"log: Duplicate device"), Lines(2, L"log: Duplicate device: 10.0.0.1"));
  EXPECT_EQ(LinesFrom(L"log: UDP"), (Lines{L"log: UDP discovery successful. Found 1 devices.",
                                           L"log: UDP discovery successful. Found 2 devices."}));
}

TEST_F(CKespTCPDiscoveryTest, NobodyAnswersTheSecondTime_TheCollectionStaysAndNothingIsFound) {
  PlaceInstrument(1, "KESP,7100,SIM1,1.0");
  EXPECT_TRUE(Discover());
  tcp_->SetIPAddress(L"10.9.9.9");
  answers_.clear();
  identities_.clear();
  EXPECT_FALSE(Discover());
  EXPECT_EQ(Devices(), (Lines{L"10.0.0.1/7100/SIM1"}));
  EXPECT_EQ(tcp_->IPAddress(), L"10.9.9.9");
  ExpectRestored();
}

TEST_F(CKespTCPDiscoveryTest, ItemsOfTheClient_AreDuplicatesWithTheAddressesThatTheyHaveNow) {
  AddDevice(L"10.0.0.1");
  Answers(SenderAt(1));
  EXPECT_TRUE(Discover());
  EXPECT_EQ(Count(), 1);
  tcp_->Devices()->Item(1)->SetIPAddress(L"10.0.0.2");
  EXPECT_TRUE(Discover());
  EXPECT_EQ(Devices(), (Lines{L"10.0.0.2//", L"10.0.0.1//"}));
  tcp_->Devices()->Clear();
  EXPECT_TRUE(Discover());
  EXPECT_EQ(Devices(), (Lines{L"10.0.0.1//"}));
}

TEST_F(CKespTCPDiscoveryTest, HandlerRemovesAnInstrument_ItsNextAnswerStoresItAgain) {
  Answers(SenderAt(1));
  Answers(SenderAt(2));
  Answers(SenderAt(1));
  int arrivals = 0;
  events_.handlers[L"DataArrivalEnd"] = [&] {
    if (++arrivals == 1) tcp_->Devices()->Clear();
  };
  EXPECT_TRUE(Discover());
  EXPECT_EQ(Devices(), (Lines{L"10.0.0.2//", L"10.0.0.1//"}));
}

TEST_F(CKespTCPDiscoveryTest, HandlerTakesTheDatagram_NobodyIsStored) {
  StartLog();
  Answers(SenderAt(1));
  events_.handlers[L"DataArrivalBegin"] = [this] { socket_->GetData(); };
  EXPECT_FALSE(Discover());
  EXPECT_EQ(LinesFrom(L"log: Receiving"), Lines{});
}

TEST_F(CKespTCPDiscoveryTest, ForgedSendersWithoutEnd_AreBounded) {
  StartLog();
  socket_->on_send = [this](const std::string& /*bytes*/) {
    socket_->on_send = nullptr;
    socket_->Then([this] {
      for (std::uint32_t n = 1; n <= 4100; ++n) socket_->ReceiveDatagram(SenderAt(n), kDiscoveryReply);
      socket_->ReceiveDatagram(SenderAt(1), kDiscoveryReply);
    });
  };
  // The walk is not what is tested here.
  events_.handlers[L"ConnectBegin"] = [this] { tcp_->Devices()->Clear(); };
  EXPECT_TRUE(Discover());
  EXPECT_EQ(LinesFrom(L"log: Stored").size(), 4096U);
  EXPECT_EQ(LinesFrom(L"log: Too many"), (Lines{L"log: Too many devices, not stored: 10.0.16.1",
                                                L"log: Too many devices, not stored: 10.0.16.2",
                                                L"log: Too many devices, not stored: 10.0.16.3",
                                                L"log: Too many devices, not stored: 10.0.16.4"}));
  EXPECT_EQ(LinesFrom(L"log: Duplicate"), (Lines{L"log: Duplicate device: 10.0.0.1"}));
  EXPECT_EQ(LinesFrom(L"log: UDP"), (Lines{L"log: UDP discovery successful. Found 4096 devices."}));
}

TEST_F(CKespTCPDiscoveryTest, FloodWithoutEnd_TheSearchEndsAllTheSame) {
  const std::function<void()> flood = [&] {
    socket_->ReceiveDatagram(SenderAt(1), kDiscoveryReply);
    socket_->Then(flood);
  };
  socket_->on_send = [&](const std::string& /*bytes*/) {
    socket_->on_send = nullptr;
    socket_->Then(flood);
  };
  unreachable_ = {L"10.0.0.1"};
  const std::int32_t start = fakes_.clock.tick();
  EXPECT_TRUE(Discover());
  EXPECT_LE(Elapsed(start), 5 * 2000U + 1000U);
  ExpectRestored();
}

TEST_F(CKespTCPDiscoveryTest, OpenConnection_IsClosedForIt) {
  tcp_->SetProtocol(EKespProtocol::sckTCPProtocol);
  EXPECT_TRUE(tcp_->Initialize());
  tcp_->SetProtocol(EKespProtocol::sckUDPProtocol);
  socket_->calls.clear();
  PlaceInstrument(1, "KESP,7100,SIM1,1.0");
  EXPECT_TRUE(Discover());
  EXPECT_EQ(socket_->calls,
            (Calls{"Close", "SetProtocol 1", "Connect 255.255.255.255:30718", "SendData", "GetData", "Close",
                   "SetProtocol 0", "Connect 10.0.0.1:10001", "SendData", "GetData", "Close"}));
  EXPECT_EQ(Devices(), (Lines{L"10.0.0.1/7100/SIM1"}));
}

TEST_F(CKespTCPDiscoveryTest, OldConnectionDoesNotClose_RaisesTimeout) {
  tcp_->SetProtocol(EKespProtocol::sckTCPProtocol);
  EXPECT_TRUE(tcp_->Initialize());
  tcp_->SetProtocol(EKespProtocol::sckUDPProtocol);
  StartLog();
  socket_->closing_reads = 1'000'000;
  fakes_.clock.SetStepPerReading(10);
  EXPECT_EQ(RaisedBy([&] { Discover(); }), (Raised{tcp_error::ERR_TIMEOUT, L"[CKespTCP - UDPBroadcast()]",
                                                   L"Timeout waiting for connection to close"}));
  EXPECT_EQ(LinesFrom(L"log: "), (Lines{L"log: Connection timeout..."}));
  // It no longer counts as connected.
  socket_->closing_reads = 0;
  socket_->Close();
  ExpectRestored();
  socket_->calls.clear();
  tcp_->SetProtocol(EKespProtocol::sckTCPProtocol);
  EXPECT_TRUE(tcp_->Initialize());
  EXPECT_EQ(socket_->calls, (Calls{"SetProtocol 0", "Connect 10.9.9.9:1234"}));
}

TEST_F(CKespTCPDiscoveryTest, PortCannotBeOpenedOrNothingSent_RaisesWithEverythingRestored) {
  const wchar_t* const source = L"[CKespTCP - UDPBroadcast()]";
  socket_->FailCall(2, 10055);  // Connect, behind SetProtocol
  EXPECT_EQ(RaisedBy([&] { Discover(); }),
            (Raised{tcp_error::ERR_CONNECTING, source,
                    L"Unable to establish connection (10055 - " + SocketErrorDescription(10055) + L")"}));
  ExpectRestored();
  socket_->FailCall(3, 10051);
  EXPECT_EQ(RaisedBy([&] { Discover(); }),
            (Raised{tcp_error::ERR_SEND_DATA, source,
                    L"Unable to send data (10051 - " + SocketErrorDescription(10051) + L")"}));
  ExpectRestored();
}

TEST_F(CKespTCPDiscoveryTest, SocketIsNotOpen_NothingIsSentAndNothingFound) {
  StartLog();
  socket_->state_after_udp_connect = EKespTCPState::sckError;
  const std::int32_t start = fakes_.clock.tick();
  EXPECT_FALSE(Discover());
  EXPECT_EQ(socket_->sent, "");
  EXPECT_EQ(Elapsed(start), 0U);
  EXPECT_EQ(LinesFrom(L"log: Sending broadcast").size(), 1U);
  ExpectRestored();
}

TEST_F(CKespTCPDiscoveryTest, ManyInstruments_AreAskedForTheirAddressTwiceEachHoweverManyAnswers) {
  // Once in the search for duplicates and once by the walk.
  int asked = 0;
  make_instrument_ = [&asked] { return std::make_shared<CountingInstrument>(asked); };
  socket_->on_send = [this](const std::string& bytes) {
    if (bytes == "*IDN?\r") {
      socket_->ThenReceives("KESP,7100,SIM1,1.0\r");
      return;
    }
    socket_->Then([this] {
      for (int round = 0; round < 3; ++round) {
        for (std::uint32_t n = 1; n <= 1000; ++n) socket_->ReceiveDatagram(SenderAt(n), kDiscoveryReply);
      }
    });
  };
  EXPECT_TRUE(Discover());
  EXPECT_EQ(Count(), 1000);
  EXPECT_EQ(asked, 2000);
}

TEST_F(CKespTCPDiscoveryTest, HandlerChangesTheProtocol_AnswersAreStoredAllTheSame) {
  Answers(SenderAt(1));
  events_.handlers[L"DataArrivalBegin"] = [this] { tcp_->SetProtocol(EKespProtocol::sckTCPProtocol); };
  EXPECT_TRUE(Discover());
  EXPECT_EQ(Devices(), (Lines{L"10.0.0.1//"}));
  ExpectRestored();
}

TEST_F(CKespTCPDiscoveryTest, HandlerSearchesAgainAndNobodyAnswersThat_TheFirstSearchHasFoundSomebody) {
  PlaceInstrument(1, "KESP,7100,SIM1,1.0");
  events_.handlers[L"DataArrivalEnd"] = [this] {
    events_.handlers.clear();
    answers_.clear();
    std::wstring result;
    EXPECT_FALSE(tcp_->AutoDetect(result));
  };
  EXPECT_TRUE(Discover());
  EXPECT_EQ(Devices(), (Lines{L"10.0.0.1/7100/SIM1"}));
  ExpectRestored();
}

TEST_F(CKespTCPDiscoveryTest, HandlerConnectsAndNobodyAnswers_NextInitializeConnectsAnew) {
  Answers(SenderAt(1), "no answer");
  const auto connect = [this] {
    SetTarget();
    tcp_->SetProtocol(EKespProtocol::sckTCPProtocol);
    return tcp_->Initialize();
  };
  events_.handlers[L"DataArrivalEnd"] = [&] {
    events_.handlers.clear();
    EXPECT_TRUE(connect());
  };
  EXPECT_FALSE(Discover());
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckClosed);
  EXPECT_TRUE(connect());
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckConnected);
}

TEST_F(CKespTCPDiscoveryTest, PortThatTheClientOpened_DuplicatesAreThoseOfNow) {
  socket_->state_after_udp_connect = EKespTCPState::sckOpen;
  Answers(SenderAt(1));
  EXPECT_TRUE(Discover());
  tcp_->Devices()->Item(1)->SetIPAddress(L"10.0.0.5");
  EXPECT_EQ(RaisedBy([&] { tcp_->Initialize(); }).number, tcp_error::ERR_TIMEOUT);
  socket_->ReceiveDatagram(SenderAt(5), kDiscoveryReply);
  socket_->ReceiveDatagram(SenderAt(1), kDiscoveryReply);
  EXPECT_EQ(Devices(), (Lines{L"10.0.0.5//", L"10.0.0.1//"}));
}

}  // namespace
}  // namespace kesp
