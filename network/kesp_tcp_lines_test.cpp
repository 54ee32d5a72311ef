// Tests of the network transport's lines as text: commands out, replies in.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "network/kesp_tcp_fixture.h"

namespace kesp {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CKespTCPLines : public KespTCPFixture {
 protected:
  // The reply of a read that succeeds.
  std::wstring Read() {
    std::wstring result;
    EXPECT_TRUE(tcp_->ReadLine(result));
    return result;
  }
};

class CKespTCPWriteLine : public CKespTCPLines {};

TEST_F(CKespTCPWriteLine, NotInitialized_IsRefused) {
  EXPECT_EQ(RaisedBy([&] { tcp_->WriteLine(L"*IDN?"); }),
            (Raised{tcp_error::ERR_NOT_INITIALIZED, L"[CKespTCP - WriteLine()]", L"Socket not initialized"}));
  EXPECT_THAT(socket_->calls, IsEmpty());
}

TEST_F(CKespTCPWriteLine, PeerHasClosed_IsRefused) {
  Connect();
  socket_->ThenPeerCloses();
  fakes_.pump.PumpOnce();
  EXPECT_EQ(RaisedBy([&] { tcp_->WriteLine(L"*IDN?"); }),
            (Raised{tcp_error::ERR_NO_CONNECTION, L"[CKespTCP - WriteLine()]", L"Socket not connected"}));
  EXPECT_THAT(socket_->calls, IsEmpty());
}

TEST_F(CKespTCPWriteLine, Command_IsSentAtOnceWithACarriageReturnWhateverTheEos) {
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

TEST_F(CKespTCPWriteLine, SendNotifications_AreDeliveredByItsPumpingBeforeWhatTheSystemBrings) {
  Connect();
  socket_->on_deliver_due = [this] { listener_->OnSendProgress(2, 0); };
  socket_->ThenReceives("A\r");
  EXPECT_TRUE(tcp_->WriteLine(L"x"));
  EXPECT_THAT(Journal(), ElementsAre(L"SendProgressBegin(2,0)", L"SendProgressEnd()", L"DataArrivalBegin(2)",
                                     L"DataArrivalEnd()"));
}

TEST_F(CKespTCPWriteLine, CharactersWithoutByte_BecomeQuestionMarksAndNulsPass) {
  Connect();
  EXPECT_TRUE(tcp_->WriteLine(std::wstring(L"\u20AC\u4E2D\0x", 4)));
  EXPECT_EQ(socket_->sent, std::string("\x80?\0x\r", 5));
}

TEST_F(CKespTCPWriteLine, SendFails_RaisesSendDataWithTheReasonAndLogsIt) {
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

TEST_F(CKespTCPWriteLine, EarlierReplyStillUnread_DoesNotSatisfyTheNextRead) {
  Connect();
  socket_->Receive("old\r");
  EXPECT_TRUE(tcp_->WriteLine(L"x"));
  tcp_->SetTimeOutmSecs(0);
  std::wstring result;
  EXPECT_EQ(RaisedBy([&] { tcp_->ReadLine(result); }).number, tcp_error::ERR_TIMEOUT);
  // What is read next holds both.
  socket_->ThenReceives("new\r");
  EXPECT_EQ(Read(), L"old new");
}

class CKespTCPReadLine : public CKespTCPLines {};

TEST_F(CKespTCPReadLine, PreChecks_RefuseWithTheirErrors) {
  std::wstring result = L"old";
  const auto read = [&] { tcp_->ReadLine(result); };
  EXPECT_EQ(RaisedBy(read),
            (Raised{tcp_error::ERR_NOT_INITIALIZED, L"[CKespTCP - ReadLine()]", L"Socket not initialized"}));
  Connect();
  for (const auto state : {EKespTCPState::sckClosed, EKespTCPState::sckClosing, EKespTCPState::sckError}) {
    socket_->ThenEnters(state).Deliver();
    EXPECT_EQ(RaisedBy(read),
              (Raised{tcp_error::ERR_NO_CONNECTION, L"[CKespTCP - ReadLine()]", L"Socket not connected"}));
  }
  EXPECT_EQ(result, L"old");
  EXPECT_THAT(socket_->calls, IsEmpty());
}

TEST_F(CKespTCPReadLine, NoReply_RaisesTimeOutWhenFourSecondsHaveBegun) {
  Connect();
  std::wstring result = L"old";
  const std::int32_t start = fakes_.clock.tick();
  EXPECT_EQ(RaisedBy([&] { tcp_->ReadLine(result); }),
            (Raised{tcp_error::ERR_TIMEOUT, L"[CKespTCP - ReadLine()]", L"Timeout"}));
  EXPECT_EQ(Elapsed(start), 4000U);
  EXPECT_EQ(result, L"old");
}

TEST_F(CKespTCPReadLine, ReplyInPieces_CompletesWithThePieceThatBringsTheEos) {
  Connect();
  socket_->ThenReceives("AB").ThenNothing().ThenReceives("C\r");
  const int pumps = fakes_.pump.count();
  EXPECT_EQ(Read(), L"ABC");
  EXPECT_EQ(fakes_.pump.count(), pumps + 3);
}

TEST_F(CKespTCPReadLine, MultiCharacterEosOverAPieceBorder_Completes) {
  Connect();
  tcp_->SetEOSChar(L"\r\n");
  tcp_->SetStripCRLF(false);
  socket_->ThenReceives("A\r").ThenReceives("\n");
  EXPECT_EQ(Read(), L"A\r\n");
}

TEST_F(CKespTCPReadLine, BytesBehindTheEos_ComeAlong) {
  Connect();
  socket_->ThenReceives("A\rB");
  EXPECT_EQ(Read(), L"A B");
  EXPECT_EQ(tcp_->State(), EKespTCPState::sckConnected);
}

TEST_F(CKespTCPReadLine, EosEmpty_TimesOutAndThePartStaysForTheNextRead) {
  Connect();
  tcp_->SetEOSChar(L"");
  tcp_->SetTimeOutmSecs(1000);
  socket_->ThenReceives("A\r");
  std::wstring result;
  EXPECT_EQ(RaisedBy([&] { tcp_->ReadLine(result); }).number, tcp_error::ERR_TIMEOUT);
  tcp_->SetEOSChar(L"\r");
  socket_->ThenReceives("B");
  EXPECT_EQ(Read(), L"A B");
}

TEST_F(CKespTCPReadLine, AfterARead_TheNextReplyIsItsOwn) {
  Connect();
  socket_->ThenReceives("A\r").ThenReceives("B").ThenReceives("\r");
  EXPECT_EQ(Read(), L"A");
  EXPECT_EQ(Read(), L"B");
}

TEST_F(CKespTCPReadLine, NotTerminateOnEos_ReturnsAfterTheFirstPiece) {
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

TEST_F(CKespTCPReadLine, StripCrLf_BlanksAndTrims) {
  Connect();
  for (const StripCase& strip : {StripCase{true, "1.0\r\n2.0\r\n", L"1.0  2.0"}, StripCase{true, "\r", L""},
                                 StripCase{true, "  a\tb \r", L"a\tb"}, StripCase{true, "\t\r", L"\t"},
                                 StripCase{false, " 1.0\r\n2.0\r\n ", L" 1.0\r\n2.0\r\n "}}) {
    tcp_->SetStripCRLF(strip.strip);
    socket_->ThenReceives(strip.reply);
    EXPECT_EQ(Read(), strip.result);
  }
}

TEST_F(CKespTCPReadLine, CharacterAbove128_RaisesEventAndThenTheSerialNumber) {
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
TEST_F(CKespTCPReadLine, AfterInvalidCharacters_TheDataReadyFlagStays) {
  Connect();
  socket_->ThenReceives("\x81\r");
  std::wstring result;
  EXPECT_EQ(RaisedBy([&] { tcp_->ReadLine(result); }).number, -2147221278);
  EXPECT_EQ(Read(), L"");
  socket_->ThenNothing().ThenReceives("B\r");
  EXPECT_TRUE(tcp_->WriteLine(L"x"));
  EXPECT_EQ(Read(), L"B");
}

TEST_F(CKespTCPReadLine, Character128_IsAccepted) {
  Connect();
  socket_->ThenReceives("\x80\r");
  EXPECT_EQ(Read(), L"\u20AC");
  EXPECT_EQ(Journal().back(), L"DataArrivalEnd()");
}

TEST_F(CKespTCPReadLine, NotCheckNonAscii_EveryByteComesThrough) {
  Connect();
  tcp_->SetCheckNonAscii(false);
  tcp_->SetStripCRLF(false);
  std::string bytes;
  for (int b = 0; b < 256; ++b) bytes.push_back(static_cast<char>(b));
  socket_->ThenReceives(bytes);
  EXPECT_EQ(SystemCodePage().ToBytes(Read()), bytes);
}

TEST_F(CKespTCPReadLine, InvalidCharacterFarBehind_PositionSaturates) {
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

TEST_F(CKespTCPReadLine, AddressChangedInInvalidCharsHandler_BothTextsNameTheSenderOfTheReply) {
  Connect();
  events_.handlers[L"ReadInvalidChars"] = [this] {
    tcp_->SetIPAddress(L"a much longer address than before");
  };
  socket_->ThenReceives("\xFF\r");
  std::wstring result;
  EXPECT_EQ(RaisedBy([&] { tcp_->ReadLine(result); }).description,
            L"Invalid characters received on IP address 10.0.0.7.");
}

TEST_F(CKespTCPReadLine, Udp_NeedsAnOpenPortAndReturnsTrueAtTheTimeOut) {
  SetTarget();
  tcp_->SetProtocol(EKespProtocol::sckUDPProtocol);
  tcp_->SetTimeOutmSecs(1000);
  socket_->state_after_udp_connect = EKespTCPState::sckResolvingHost;
  EXPECT_NE(RaisedBy([&] { tcp_->Initialize(); }).number, 0);
  std::wstring result = L"old";
  EXPECT_EQ(RaisedBy([&] { tcp_->ReadLine(result); }),
            (Raised{tcp_error::ERR_NO_CONNECTION, L"[CKespTCP - ReadLine()]", L"Socket not connected"}));
  socket_->ThenEnters(EKespTCPState::sckOpen).Deliver();
  const std::int32_t start = fakes_.clock.tick();
  EXPECT_TRUE(tcp_->ReadLine(result));
  EXPECT_EQ(Elapsed(start), 2000U);
  EXPECT_EQ(result, L"old");
  BinaryValue value;
  EXPECT_EQ(RaisedBy([&] { tcp_->ReadLineBinary(value); }).number, tcp_error::ERR_TIMEOUT);
}

TEST_F(CKespTCPReadLine, ReplyThenPeerCloses_IsStillRead) {
  Connect();
  socket_->Then([this] {
    socket_->Receive("A\r");
    socket_->ThenPeerCloses().Deliver();
  });
  EXPECT_EQ(Read(), L"A");
}

TEST_F(CKespTCPReadLine, ReplyAndPeerClosesDuringTheWrite_FindsNoConnection) {
  Connect();
  socket_->Then([this] {
    socket_->Receive("A\r");
    socket_->ThenPeerCloses().Deliver();
  });
  EXPECT_TRUE(tcp_->WriteLine(L"x"));
  std::wstring result = L"old";
  EXPECT_EQ(RaisedBy([&] { tcp_->ReadLine(result); }).number, tcp_error::ERR_NO_CONNECTION);
  EXPECT_EQ(result, L"old");
}

TEST_F(CKespTCPReadLine, PeerClosesAfterAPart_TimesOutAndTheNextReadFindsNoConnection) {
  Connect();
  socket_->ThenReceives("A").ThenPeerCloses();
  std::wstring result = L"old";
  EXPECT_EQ(RaisedBy([&] { tcp_->ReadLine(result); }).number, tcp_error::ERR_TIMEOUT);
  EXPECT_EQ(RaisedBy([&] { tcp_->ReadLine(result); }).number, tcp_error::ERR_NO_CONNECTION);
  EXPECT_EQ(result, L"old");
}

TEST_F(CKespTCPReadLine, Overrun_RaisesGetDataAtOnce) {
  Connect();
  socket_->ThenReceives("A").ThenOverruns();
  std::wstring result = L"old";
  const std::int32_t start = fakes_.clock.tick();
  EXPECT_EQ(RaisedBy([&] { tcp_->ReadLine(result); }),
            (Raised{tcp_error::ERR_GET_DATA, L"[CKespTCP - ReadLine()]",
                    L"Unable to get data (10055 - No buffer space is available)"}));
  EXPECT_EQ(Elapsed(start), 2 * kPumpMilliseconds);
  EXPECT_EQ(result, L"old");
  EXPECT_EQ(RaisedBy([&] { tcp_->ReadLine(result); }).number, tcp_error::ERR_NO_CONNECTION);
}

TEST_F(CKespTCPReadLine, OtherSocketError_WaitsForTheTimeOut) {
  Connect();
  socket_->ThenFails(10054);
  std::wstring result;
  EXPECT_EQ(RaisedBy([&] { tcp_->ReadLine(result); }).number, tcp_error::ERR_TIMEOUT);
}

TEST_F(CKespTCPReadLine, AfterOverrun_ANewConnectionReadsAgain) {
  Connect();
  socket_->ThenOverruns();
  std::wstring result;
  EXPECT_EQ(RaisedBy([&] { tcp_->ReadLine(result); }).number, tcp_error::ERR_GET_DATA);
  EXPECT_TRUE(tcp_->Uninitialize());
  Connect();
  socket_->ThenNothing().ThenReceives("A\r");
  EXPECT_EQ(Read(), L"A");
}

TEST_F(CKespTCPReadLine, HandlerTakesTheReply_TheOuterReadWaitsForTheNext) {
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
TEST_F(CKespTCPReadLine, HandlerTakesTheReplyInBegin_NothingIsReady) {
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
    std::wstring result = L"old";
    EXPECT_EQ(RaisedBy([&] { tcp_->ReadLine(result); }).number, tcp_error::ERR_TIMEOUT);
    EXPECT_EQ(taken, L"A +");
    EXPECT_EQ(result, L"old");
    EXPECT_TRUE(tcp_->Uninitialize());
  }
}

TEST_F(CKespTCPReadLine, HandlerUninitializes_TheReadTimesOutWithoutAReply) {
  for (const wchar_t* event : {L"DataArrivalBegin", L"DataArrivalEnd"}) {
    Connect();
    events_.handlers[event] = [this] { EXPECT_TRUE(tcp_->Uninitialize()); };
    socket_->ThenReceives("A\r");
    std::wstring result = L"old";
    EXPECT_EQ(RaisedBy([&] { tcp_->ReadLine(result); }).number, tcp_error::ERR_TIMEOUT);
    EXPECT_EQ(result, L"old");
    events_.handlers.clear();
  }
}

TEST_F(CKespTCPReadLine, HandlerReconnects_HalfAnEosIsForgotten) {
  Connect();
  tcp_->SetEOSChar(L"\r\n");
  tcp_->SetTimeOutmSecs(0);
  socket_->Receive("A\r");
  EXPECT_TRUE(tcp_->Uninitialize());
  Connect();
  socket_->ThenReceives("\n");
  std::wstring result;
  EXPECT_EQ(RaisedBy([&] { tcp_->ReadLine(result); }).number, tcp_error::ERR_TIMEOUT);
}

// Quadratic work, about 33,000 times 16 MB, would take the best part of a minute.
TEST_F(CKespTCPReadLine, LargeReplyInManyPieces_ComesWhole) {
  Connect();
  constexpr int kPieces = 4096;
  const std::string piece(1024, 'x');
  for (int i = 0; i < kPieces - 1; ++i) socket_->Receive(piece);
  socket_->ThenReceives(piece + "\r");
  EXPECT_EQ(Read().size(), piece.size() * kPieces);
}

}  // namespace
}  // namespace kesp
