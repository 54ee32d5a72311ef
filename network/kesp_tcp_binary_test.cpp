// Tests of the network transport's binary reads, and of how it judges what arrives.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "network/kesp_tcp_fixture.h"

namespace kesp {
namespace {

using testing::ElementsAre;

class CKespTCPReadLineBinaryTest : public KespTCPFixture {
 protected:
  std::string ReadBinary(std::int32_t lTimeoutms = 100) {
    BinaryValue value;
    EXPECT_TRUE(tcp_->ReadLineBinary(value, lTimeoutms));
    const Bytes& bytes = std::get<Bytes>(value);
    return {bytes.begin(), bytes.end()};
  }
};

TEST_F(CKespTCPReadLineBinaryTest, Refused_RaisesUnderItsOwnSourceAndLeavesTheValue) {
  BinaryValue value = std::wstring(L"old");
  const auto refusal = [&] { return RaisedBy([&] { tcp_->ReadLineBinary(value); }); };
  const wchar_t* const source = L"[CKespTCP - ReadLineBinary()]";
  EXPECT_EQ(refusal(), (Raised{tcp_error::ERR_NOT_INITIALIZED, source, L"Socket not initialized"}));
  Connect();
  const std::int32_t start = fakes_.clock.tick();
  EXPECT_EQ(refusal(), (Raised{tcp_error::ERR_TIMEOUT, source, L"Timeout"}));
  EXPECT_EQ(Elapsed(start), 4000U);
  socket_->ThenOverruns();
  EXPECT_EQ(refusal(), (Raised{tcp_error::ERR_GET_DATA, source,
                               L"Unable to get data (10055 - No buffer space is available)"}));
  EXPECT_EQ(refusal(), (Raised{tcp_error::ERR_NO_CONNECTION, source, L"Socket not connected"}));
  EXPECT_EQ(std::get<std::wstring>(value), L"old");
}

TEST_F(CKespTCPReadLineBinaryTest, EosArrives_BytesAreNeitherCheckedNorStripped) {
  Connect();
  std::string bytes;
  for (int b = 0; b < 256; ++b) bytes.push_back(static_cast<char>(b));
  socket_->ThenReceives(bytes);
  EXPECT_EQ(ReadBinary(), bytes);
}

TEST_F(CKespTCPReadLineBinaryTest, NotTerminateOnEos_ReturnsWhenMoreThanTheGapIsQuiet) {
  Connect();
  tcp_->SetTerminateOnEOS(false);
  socket_->ThenReceives("A").ThenNothing().ThenReceives("B\r").ThenNothing().ThenReceives("C");
  // Every pump takes 100 ms; a gap of 200 ms is not more than 200.
  const std::int32_t start = fakes_.clock.tick();
  EXPECT_EQ(ReadBinary(200), "AB\rC");
  EXPECT_EQ(Elapsed(start), 4 * 100 + 300U);
  socket_->ThenReceives("A").ThenNothing().ThenNothing().ThenReceives("B");
  EXPECT_EQ(ReadBinary(), "A") << "a piece behind the gap is left for the next read";
  EXPECT_EQ(ReadBinary(), "B");
  socket_->ThenReceives("A").ThenReceives("B");
  EXPECT_EQ(ReadBinary(-1), "A") << "a negative gap is over with the first piece";
}

TEST_F(CKespTCPReadLineBinaryTest, ReplyReadyBefore_TheGapCountsFromTheCall) {
  Connect();
  tcp_->SetTerminateOnEOS(false);
  socket_->Receive("A");
  fakes_.clock.Advance(10000);
  const std::int32_t start = fakes_.clock.tick();
  EXPECT_EQ(ReadBinary(250), "A");
  EXPECT_EQ(Elapsed(start), 300U);
}

TEST_F(CKespTCPReadLineBinaryTest, TickCounterWraps_TheGapIsStillRight) {
  for (const std::int32_t tick : {INT32_MAX - 250, -250}) {
    fakes_.clock.SetTickCount(tick);
    Connect();
    tcp_->SetTerminateOnEOS(false);
    socket_->ThenReceives("A");
    const std::int32_t start = fakes_.clock.tick();
    EXPECT_EQ(ReadBinary(450), "A");
    EXPECT_EQ(static_cast<std::uint32_t>(fakes_.clock.tick()) - static_cast<std::uint32_t>(start), 500U);
    EXPECT_TRUE(tcp_->Uninitialize());
  }
}

TEST_F(CKespTCPReadLineBinaryTest, NeverQuiet_RaisesTimeOut) {
  Connect();
  tcp_->SetTerminateOnEOS(false);
  fakes_.pump.OnPump([this] {
    socket_->Receive("x");
    fakes_.clock.Advance(kPumpMilliseconds);
  });
  BinaryValue value;
  EXPECT_EQ(RaisedBy([&] { tcp_->ReadLineBinary(value, 100); }).number, tcp_error::ERR_TIMEOUT);
}

class CKespTCPDataArrivalTest : public KespTCPFixture {};

TEST_F(CKespTCPDataArrivalTest, Pieces_LogAndRaiseInOrder) {
  Connect();
  StartLog();
  socket_->Receive("A\xE9");
  socket_->Receive("\r");
  EXPECT_THAT(
      Journal(),
      ElementsAre(L"log: DataArrival (10.0.0.7:5025) Bytes: 2", L"DataArrivalBegin(2)",
                  L"log: Socket Data arrived: <A\u00E9> (length: 2  last byte: 233 EOS: 13 EOS?: False)",
                  L"DataArrivalEnd()", L"log: DataArrival (10.0.0.7:5025) Bytes: 3", L"DataArrivalBegin(3)",
                  L"log: Socket Data arrived: <A\u00E9\r> (length: 3  last byte: 13 EOS: 13 EOS?: True)",
                  L"DataArrivalEnd()"));
}

TEST_F(CKespTCPDataArrivalTest, MoreThan64KiloBytesPending_TheRestIsOnlyCountedInTheLog) {
  Connect();
  StartLog();
  socket_->Receive(std::string(65536, 'x'));
  EXPECT_EQ(Journal().at(2), L"log: Socket Data arrived: <" + std::wstring(65536, L'x') +
                                 L"> (length: 65536  last byte: 120 EOS: 13 EOS?: False)");
  socket_->Receive("y\r");
  EXPECT_EQ(Journal().at(6), L"log: Socket Data arrived: <" + std::wstring(65536, L'x') +
                                 L"> and 2 more (length: 65538  last byte: 13 EOS: 13 EOS?: True)");
  std::wstring result;
  EXPECT_TRUE(tcp_->ReadLine(result));
  EXPECT_EQ(result.size(), 65537U);
}

TEST_F(CKespTCPDataArrivalTest, NotTerminateOnEos_EveryPieceIsReady) {
  Connect();
  StartLog();
  tcp_->SetTerminateOnEOS(false);
  tcp_->SetEOSChar(L"");
  socket_->Receive("A");
  EXPECT_EQ(Journal().at(2), L"log: Socket Data arrived: <A> (length: 1  last byte: 65 EOS:  EOS?: True)");
}

TEST_F(CKespTCPDataArrivalTest, WhileConnecting_OnlyTheFirstLineIsLogged) {
  Connect();
  StartLog();
  socket_->ThenEnters(EKespTCPState::sckConnecting).Deliver();
  socket_->Receive("A\r");
  EXPECT_THAT(Journal(), ElementsAre(L"log: DataArrival (10.0.0.7:5025) Bytes: 2"));
  socket_->ThenEnters(EKespTCPState::sckConnected).ThenNothing().Deliver();
  tcp_->SetTimeOutmSecs(0);
  std::wstring result;
  EXPECT_EQ(RaisedBy([&] { tcp_->ReadLine(result); }).number, tcp_error::ERR_TIMEOUT);
  EXPECT_EQ(socket_->PeekData(), "A\r");
}

TEST_F(CKespTCPDataArrivalTest, Udp_RaisesEventsButMakesNothingReady) {
  SetTarget();
  tcp_->SetProtocol(EKespProtocol::sckUDPProtocol);
  tcp_->SetTimeOutmSecs(0);
  socket_->state_after_connect = EKespTCPState::sckOpen;
  EXPECT_NE(RaisedBy([&] { tcp_->Initialize(); }).number, 0);
  StartLog();
  socket_->ThenReceives("A\r");
  std::wstring result = L"old";
  EXPECT_TRUE(tcp_->ReadLine(result));
  EXPECT_EQ(result, L"old");
  EXPECT_THAT(Journal(),
              ElementsAre(L"log: DataArrival (10.0.0.7:5025) Bytes: 2", L"DataArrivalBegin(2)",
                          L"log: Socket Data arrived: <A\r> (length: 2  last byte: 13 EOS: 13 EOS?: False)",
                          L"DataArrivalEnd()"));
}

}  // namespace
}  // namespace kesp
