// Tests of the network transport's lines as text: commands out, replies in.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "network/kesp_tcp_fixture.h"

namespace kesp {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CKespTCPLinesFixture : public KespTCPFixture {
 protected:
  // The reply of a read that succeeds.
  std::wstring Read() {
    std::wstring result;
    EXPECT_TRUE(tcp_->ReadLine(result));
    return result;
  }
  // What a read raises that leaves its argument as it is.
  Raised RefusedRead() {
    std::wstring result = L"old";
    Raised raised = RaisedBy([&] { tcp_->ReadLine(result); });
    EXPECT_EQ(result, L"old");
    return raised;
  }
  void ExpectTimeOut() {
    EXPECT_EQ(RefusedRead(), (Raised{tcp_error::ERR_TIMEOUT, L"[CKespTCP - ReadLine()]", L"Timeout"}));
  }
};

class CKespTCPWriteLineTest : public CKespTCPLinesFixture {};

TEST_F(CKespTCPWriteLineTest, NotInitializedOrPeerHasClosed_IsRefused) {
  const auto write = [this] { tcp_->WriteLine(L"*IDN?"); };
  const wchar_t* const source = L"[CKespTCP - WriteLine()]";
  EXPECT_EQ(RaisedBy(write), (Raised{tcp_error::ERR_NOT_INITIALIZED, source, L"Socket not initialized"}));
  Connect();
  socket_->ThenPeerCloses().Deliver();
  EXPECT_EQ(RaisedBy(write), (Raised{tcp_error::ERR_NO_CONNECTION, source, L"Socket not connected"}));
  EXPECT_THAT(socket_->calls, IsEmpty());
}

TEST_F(CKespTCPWriteLineTest, Command_IsSentAtOnceWithACarriageReturnWhateverTheEos) {
  Connect();
  tcp_->SetEOSChar(L"\n");
  const int pumps = fakes_.pump.count();
  EXPECT_TRUE(tcp_->WriteLine(L"*IDN?"));
  EXPECT_EQ(socket_->sent, "*IDN?\r");
  EXPECT_THAT(socket_->calls, ElementsAre("SendData"));
  EXPECT_EQ(fakes_.pump.count(), pumps + 1);
  EXPECT_TRUE(tcp_->WriteLine());
  EXPECT_EQ(socket_->sent, "*IDN?\r\r");
}

TEST_F(CKespTCPWriteLineTest, SendNotifications_AreDeliveredByItsPumpingBeforeWhatTheSystemBrings) {
  Connect();
  socket_->on_deliver_due = [this] { listener_->OnSendProgress(2, 0); };
  socket_->ThenReceives("A\r");
  EXPECT_TRUE(tcp_->WriteLine(L"x"));
  EXPECT_THAT(Journal(), ElementsAre(L"SendProgressBegin(2,0)", L"SendProgressEnd()", L"DataArrivalBegin(2)",
                                     L"DataArrivalEnd()"));
}

TEST_F(CKespTCPWriteLineTest, CharactersWithoutByte_BecomeQuestionMarksAndNulsPass) {
  Connect();
  EXPECT_TRUE(tcp_->WriteLine(std::wstring(L"\u20AC\u4E2D\0x", 4)));
  EXPECT_EQ(socket_->sent, std::string("\x80?\0x\r", 5));
}

TEST_F(CKespTCPWriteLineTest, SendFails_RaisesSendDataWithTheReasonAndLogsIt) {
  Connect();
  StartLog();
  socket_->FailCall(1, 10054);
  EXPECT_EQ(RaisedBy([&] { tcp_->WriteLine(L"*IDN?"); }),
            (Raised{tcp_error::ERR_SEND_DATA, L"[CKespTCP - WriteLine()]",
                    L"Unable to send data (10054 - The connection is reset by remote side)"}));
  EXPECT_THAT(Journal(),
              ElementsAre(L"log: Unable to send command '*IDN?' to 10.0.0.7 on port 5025: 10054 - The "
                          L"connection is reset by remote side"));
}

TEST_F(CKespTCPWriteLineTest, EarlierReplyStillUnread_DoesNotSatisfyTheNextRead) {
  Connect();
  socket_->Receive("old\r");
  EXPECT_TRUE(tcp_->WriteLine(L"x"));
  tcp_->SetTimeOutmSecs(0);
  ExpectTimeOut();
  // What is read next holds both.
  socket_->ThenReceives("new\r");
  EXPECT_EQ(Read(), L"old new");
}

class CKespTCPReadLineTest : public CKespTCPLinesFixture {};

TEST_F(CKespTCPReadLineTest, PreChecks_RefuseWithTheirErrors) {
  const wchar_t* const source = L"[CKespTCP - ReadLine()]";
  EXPECT_EQ(RefusedRead(), (Raised{tcp_error::ERR_NOT_INITIALIZED, source, L"Socket not initialized"}));
  Connect();
  for (const auto state : {EKespTCPState::sckClosed, EKespTCPState::sckClosing, EKespTCPState::sckError}) {
    socket_->ThenEnters(state).Deliver();
    EXPECT_EQ(RefusedRead(), (Raised{tcp_error::ERR_NO_CONNECTION, source, L"Socket not connected"}));
  }
  EXPECT_THAT(socket_->calls, IsEmpty());
}

TEST_F(CKespTCPReadLineTest, NoReply_RaisesTimeOutWhenFourSecondsHaveBegun) {
  Connect();
  const std::int32_t start = fakes_.clock.tick();
  ExpectTimeOut();
  EXPECT_EQ(Elapsed(start), 4000U);
}

TEST_F(CKespTCPReadLineTest, ReplyInPieces_CompletesWithThePieceThatBringsTheEos) {
  Connect();
  socket_->ThenReceives("AB").ThenNothing().ThenReceives("C\r");
  const int pumps = fakes_.pump.count();
  EXPECT_EQ(Read(), L"ABC");
  EXPECT_EQ(fakes_.pump.count(), pumps + 3);
}

TEST_F(CKespTCPReadLineTest, ReplyAfterAnotherInLongerPieces_CompletesWithItsOwnEos) {
  Connect();
  socket_->ThenReceives("A\r").ThenReceives("BCD").ThenReceives("E\r");
  EXPECT_EQ(Read(), L"A");
  EXPECT_EQ(Read(), L"BCDE");
}

TEST_F(CKespTCPReadLineTest, MultiCharacterEosOverAPieceBorder_Completes) {
  Connect();
  tcp_->SetEOSChar(L"\r\n");
  tcp_->SetStripCRLF(false);
  socket_->ThenReceives("A\r").ThenReceives("\n");
  EXPECT_EQ(Read(), L"A\r\n");
}

TEST_F(CKespTCPReadLineTest, BytesBehindTheEos_ComeAlong) {
  Connect();
  socket_->ThenReceives("A\rB");
  EXPECT_EQ(Read(), L"A B");
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckConnected);
}

TEST_F(CKespTCPReadLineTest, EosEmpty_TimesOutAndThePartStaysForTheNextRead) {
  Connect();
  tcp_->SetEOSChar(L"");
  tcp_->SetTimeOutmSecs(1000);
  socket_->ThenReceives("A\r");
  ExpectTimeOut();
  tcp_->SetEOSChar(L"\r");
  socket_->ThenReceives("B");
  EXPECT_EQ(Read(), L"A B");
}

TEST_F(CKespTCPReadLineTest, NotTerminateOnEos_ReturnsAfterTheFirstPiece) {
  Connect();
  tcp_->SetTerminateOnEOS(false);
  socket_->ThenReceives("AB").ThenReceives("C\r");
  EXPECT_EQ(Read(), L"AB");
  EXPECT_EQ(Read(), L"C");
}

struct StripCase {
  bool strip;
  const char* reply;
  const wchar_t* result;
};

TEST_F(CKespTCPReadLineTest, StripCrLf_BlanksAndTrims) {
  Connect();
  for (const StripCase& strip : {StripCase{true, "1.0\r\n2.0\r\n", L"1.0  2.0"}, StripCase{true, "\r", L""},
                                 StripCase{true, "  a\tb \r", L"a\tb"}, StripCase{true, "\t\r", L"\t"},
                                 StripCase{false, " 1.0\r\n2.0\r\n ", L" 1.0\r\n2.0\r\n "}}) {
    tcp_->SetStripCRLF(strip.strip);
    socket_->ThenReceives(strip.reply);
    EXPECT_EQ(Read(), strip.result);
  }
}

TEST_F(CKespTCPReadLineTest, CharacterAbove128_RaisesEventAndThenTheSerialNumber) {
  Connect();
  socket_->ThenReceives(
      "AB\x81"
      "C\xFF\r");
  std::wstring result = L"old";
  EXPECT_EQ(RaisedBy([&] { tcp_->ReadLine(result); }),
            (Raised{-2147221278, L"CKespTCP - ReadLine()",
                    L"Invalid characters received on IP address 10.0.0.7."}));
  EXPECT_EQ(result, L"AB\u0081C\u00FF\r");  // neither stripped nor trimmed
  EXPECT_EQ(Journal().back(), L"ReadInvalidChars(AB\u0081C\u00FF\r,3,10.0.0.7)");
}

// Fields stay as they were: the reply counts as complete until a command is written, though its bytes are
// gone.
TEST_F(CKespTCPReadLineTest, AfterInvalidCharacters_TheDataReadyFlagStays) {
  Connect();
  socket_->ThenReceives("\x81\r");
  std::wstring result;
  EXPECT_EQ(RaisedBy([&] { tcp_->ReadLine(result); }).number, -2147221278);
  EXPECT_EQ(Read(), L"");
  socket_->ThenNothing().ThenReceives("B\r");
  EXPECT_TRUE(tcp_->WriteLine(L"x"));
  EXPECT_EQ(Read(), L"B");
}

TEST_F(CKespTCPReadLineTest, Character128_IsAccepted) {
  Connect();
  socket_->ThenReceives("\x80\r");
  EXPECT_EQ(Read(), L"\u20AC");
  EXPECT_EQ(Journal().back(), L"DataArrivalEnd()");
}

TEST_F(CKespTCPReadLineTest, NotCheckNonAscii_EveryByteComesThrough) {
  Connect();
  tcp_->SetCheckNonAscii(false);
  tcp_->SetStripCRLF(false);
  std::string bytes;
  for (int b = 0; b < 256; ++b) bytes.push_back(static_cast<char>(b));
  socket_->ThenReceives(bytes);
  EXPECT_EQ(SystemCodePage().ToBytes(Read()), bytes);
}

TEST_F(CKespTCPReadLineTest, InvalidCharacterFarBehind_PositionSaturates) {
  Connect();
  for (const auto& [before, pos] : {std::pair<std::size_t, std::wstring>{32766, L"32767"},
                                    std::pair<std::size_t, std::wstring>{100000, L"32767"},
                                    std::pair<std::size_t, std::wstring>{32765, L"32766"}}) {
    socket_->ThenNothing().ThenReceives(std::string(before, 'a') + "\xFF\r");
    std::wstring result;
    tcp_->WriteLine(L"x");
    EXPECT_NE(RaisedBy([&] { tcp_->ReadLine(result); }).number, 0);
    const std::wstring event = Journal().back();
    EXPECT_EQ(event.substr(event.find(L',')), L"," + pos + L",10.0.0.7)");
  }
}

TEST_F(CKespTCPReadLineTest, AddressChangedInInvalidCharsHandler_BothTextsNameTheSenderOfTheReply) {
  Connect();
  events_.handlers[L"ReadInvalidChars"] = [this] {
    tcp_->SetIPAddress(L"a much longer address than before");
  };
  socket_->ThenReceives("\xFF\r");
  std::wstring result;
  EXPECT_EQ(RaisedBy([&] { tcp_->ReadLine(result); }).description,
            L"Invalid characters received on IP address 10.0.0.7.");
}

TEST_F(CKespTCPReadLineTest, Udp_NeedsAnOpenPortAndReturnsTrueAtTheTimeOut) {
  SetTarget();
  tcp_->SetProtocol(EKespProtocol::sckUDPProtocol);
  tcp_->SetTimeOutmSecs(1000);
  socket_->state_after_udp_connect = EKespTCPState::sckResolvingHost;
  EXPECT_NE(RaisedBy([&] { tcp_->Initialize(); }).number, 0);
  EXPECT_EQ(RefusedRead(),
            (Raised{tcp_error::ERR_NO_CONNECTION, L"[CKespTCP - ReadLine()]", L"Socket not connected"}));
  socket_->ThenEnters(EKespTCPState::sckOpen).Deliver();
  std::wstring result = L"old";
  const std::int32_t start = fakes_.clock.tick();
  EXPECT_TRUE(tcp_->ReadLine(result));
  EXPECT_EQ(Elapsed(start), 2000U);
  EXPECT_EQ(result, L"old");
  BinaryValue value;
  EXPECT_EQ(RaisedBy([&] { tcp_->ReadLineBinary(value); }).number, tcp_error::ERR_TIMEOUT);
}

// A peer that goes away behind its reply.
TEST_F(CKespTCPReadLineTest, ReplyAndPeerCloses_IsReadUnlessThatHappenedDuringTheWrite) {
  for (const bool during_the_write : {false, true}) {
    Connect();
    socket_->Then([this] {
      socket_->Receive("A\r");
      socket_->ThenPeerCloses().Deliver();
    });
    if (during_the_write) {
      EXPECT_TRUE(tcp_->WriteLine(L"x"));
      EXPECT_EQ(RefusedRead().number, tcp_error::ERR_NO_CONNECTION);
    } else {
      EXPECT_EQ(Read(), L"A");
    }
    EXPECT_TRUE(tcp_->Uninitialize());
  }
}

TEST_F(CKespTCPReadLineTest, PeerClosesAfterAPart_TimesOutAndTheNextReadFindsNoConnection) {
  Connect();
  socket_->ThenReceives("A").ThenPeerCloses();
  ExpectTimeOut();
  EXPECT_EQ(RefusedRead().number, tcp_error::ERR_NO_CONNECTION);
}

TEST_F(CKespTCPReadLineTest, Overrun_RaisesGetDataAtOnceAndANewConnectionReadsAgain) {
  Connect();
  socket_->ThenReceives("A").ThenOverruns();
  const std::int32_t start = fakes_.clock.tick();
  EXPECT_EQ(RefusedRead(), (Raised{tcp_error::ERR_GET_DATA, L"[CKespTCP - ReadLine()]",
                                   L"Unable to get data (10055 - No buffer space is available)"}));
  EXPECT_EQ(Elapsed(start), 2 * kPumpMilliseconds);
  EXPECT_EQ(RefusedRead().number, tcp_error::ERR_NO_CONNECTION);
  EXPECT_TRUE(tcp_->Uninitialize());
  Connect();
  socket_->ThenNothing().ThenReceives("A\r");
  EXPECT_EQ(Read(), L"A");
}

// The search for the end starts at the first byte of the new connection.
TEST_F(CKespTCPReadLineTest, PartOfAReplyThenANewConnection_AReplyAsLongIsWhole) {
  Connect();
  socket_->ThenReceives("ABC");
  ExpectTimeOut();
  EXPECT_TRUE(tcp_->Uninitialize());
  Connect();
  socket_->ThenReceives("12\r");
  EXPECT_EQ(Read(), L"12");
}

TEST_F(CKespTCPReadLineTest, OtherSocketError_WaitsForTheTimeOut) {
  Connect();
  socket_->ThenFails(10054);
  ExpectTimeOut();
}

TEST_F(CKespTCPReadLineTest, HandlerTakesTheReply_TheOuterReadWaitsForTheNext) {
  Connect();
  std::wstring inner;
  events_.handlers[L"DataArrivalEnd"] = [this, &inner] {
    events_.handlers.clear();
    inner = Read();
  };
  socket_->ThenReceives("A\r").ThenNothing().ThenReceives("B\r");
  EXPECT_EQ(Read(), L"B");
  EXPECT_EQ(inner, L"A");
}

// The bytes that DataArrivalBegin announced are gone when they are judged.
TEST_F(CKespTCPReadLineTest, HandlerTakesTheReplyInBegin_NothingIsReady) {
  for (const bool terminate_on_eos : {true, false}) {
    Connect();
    StartLog();
    tcp_->SetTerminateOnEOS(terminate_on_eos);
    tcp_->SetTimeOutmSecs(0);
    std::wstring taken;
    events_.handlers[L"DataArrivalBegin"] = [this, &taken] {
      events_.handlers.clear();
      socket_->Then([this] { socket_->Receive("+\r"); });
      taken = Read();
    };
    socket_->ThenReceives("A\r");
    ExpectTimeOut();
    EXPECT_EQ(taken, L"A +");
    EXPECT_TRUE(tcp_->Uninitialize());
  }
}

TEST_F(CKespTCPReadLineTest, HandlerUninitializes_TheReadTimesOutWithoutAReply) {
  for (const wchar_t* event : {L"DataArrivalBegin", L"DataArrivalEnd"}) {
    Connect();
    events_.handlers[event] = [this] { EXPECT_TRUE(tcp_->Uninitialize()); };
    socket_->ThenReceives("A\r");
    ExpectTimeOut();
    events_.handlers.clear();
  }
}

TEST_F(CKespTCPReadLineTest, HandlerReconnects_HalfAnEosIsForgotten) {
  Connect();
  tcp_->SetEOSChar(L"\r\n");
  tcp_->SetTimeOutmSecs(0);
  socket_->Receive("A\r");
  EXPECT_TRUE(tcp_->Uninitialize());
  Connect();
  socket_->ThenReceives("\n");
  ExpectTimeOut();
}

// Quadratic work, about 33,000 times 16 MB, would take the best part of a minute.
TEST_F(CKespTCPReadLineTest, LargeReplyInManyPieces_ComesWhole) {
  Connect();
  constexpr int kPieces = 4096;
  const std::string piece(1024, 'x');
  for (int i = 0; i < kPieces - 1; ++i) socket_->Receive(piece);
  socket_->ThenReceives(piece + "\r");
  EXPECT_EQ(Read().size(), piece.size() * kPieces);
}

}  // namespace
}  // namespace kesp
