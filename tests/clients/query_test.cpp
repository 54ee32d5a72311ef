// Whole exchanges over a real connection: replies and every status that an instrument can provoke.
#include <gtest/gtest.h>

#include "tests/clients/comm_obj_fixture.h"
#include "tests/clients/event_recorder.h"

namespace kesp::clients {
namespace {

class QueryTest : public CommObjFixture {
 protected:
  // The shortest time-out that still leaves a second for connecting: waits end after 1 to 2 s.
  void ShortenTimeOut() { EXPECT_EQ(Write(tcp_, &_CKespTCP::put_TimeOutmSecs, 1000), S_OK); }
};

TEST_F(QueryTest, Reply_IsReturnedAsText) {
  EXPECT_TRUE(Query(L"*IDN?"));
  EXPECT_EQ(reply_.str(), L"KESP,TORTURE,SIM00666,1.0");
  ExpectStatus(cfrSuccess);
  EXPECT_EQ(Read(tcp_, &_CKespTCP::get_State), sckClosed);
}

TEST_F(QueryTest, RepliesInARow_AreKeptApart) {
  for (int i = 0; i < 20; ++i) {
    const std::wstring cmd = L"ECHO " + std::to_wstring(i);
    EXPECT_TRUE(Query(cmd));
    EXPECT_EQ(reply_.str(), cmd);
  }
}

TEST_F(QueryTest, ReplyReplacesWhatTheArgumentHeld) {
  *reply_.in_out() = SysAllocString(L"something longer than the reply, left from an earlier query");
  EXPECT_TRUE(Query(L"*IDN?"));
  EXPECT_EQ(reply_.str(), L"KESP,TORTURE,SIM00666,1.0");
}

TEST_F(QueryTest, AutoCloseOff_ConnectionIsClosedAllTheSame) {
  EXPECT_EQ(Write(comm_, &_CKespCommObj::put_AutoClose, VARIANT_FALSE), S_OK);
  EXPECT_TRUE(Query(L"*IDN?"));
  EXPECT_EQ(Read(tcp_, &_CKespTCP::get_State), sckClosed);
}

TEST_F(QueryTest, SlowSplitTrickledReplies_AreComplete) {
  EXPECT_TRUE(Query(L"SLOW?"));
  EXPECT_EQ(reply_.str(), L"SLOW 1.0");
  EXPECT_TRUE(Query(L"SPLIT?"));
  EXPECT_EQ(reply_.str(), L"SPLIT 1.0,2.0,3.0");
  EXPECT_TRUE(Query(L"TRICKLE?"));
  EXPECT_EQ(reply_.str(), L"TRICKLE 1.0");
}

TEST_F(QueryTest, Lines_BecomeBlanks) {
  EXPECT_TRUE(Query(L"CRLF?"));
  EXPECT_EQ(reply_.str(), L"1.0  2.0");
}

TEST_F(QueryTest, Binary_AllBytesArrive) {
  std::string expected;
  for (int byte = 0; byte < 256; ++byte) {
    if (byte != '\r') expected += static_cast<char>(byte);
  }
  expected += '\r';
  EXPECT_TRUE(QueryBinary(L"ALLBYTES?"));
  EXPECT_EQ(BytesOf(*bytes_.get()), expected);
  ExpectStatus(cfrSuccess);
}

TEST_F(QueryTest, Binary_ReplyReplacesWhatTheVariableHeld) {
  for (const Value& before : {Value(), Value(5), Value(L"text")}) {
    bytes_ = before;
    EXPECT_TRUE(QueryBinary(L"ECHO a"));
    EXPECT_EQ(BytesOf(*bytes_.get()), "ECHO a\r");
  }
  EXPECT_TRUE(QueryBinary(L"ECHO b")) << "the variable holds an array by now";
  EXPECT_EQ(BytesOf(*bytes_.get()), "ECHO b\r");
}

TEST_F(QueryTest, Binary_QuietGap_IsBinaryTimeoutms) {
  EXPECT_EQ(Write(tcp_, &_CKespTCP::put_TerminateOnEOS, VARIANT_FALSE), S_OK);
  EXPECT_EQ(Write(comm_, &_CKespCommObj::put_BinaryTimeoutms, 400), S_OK);
  const DWORD start = GetTickCount();
  EXPECT_TRUE(QueryBinary(L"SPLIT?")) << "the pieces come 30 ms apart";
  EXPECT_EQ(BytesOf(*bytes_.get()), "SPLIT 1.0,2.0,3.0\r");
  EXPECT_GE(GetTickCount() - start, 400u + 3 * 30);
}

TEST_F(QueryTest, Update_SendsAndDoesNotWait) {
  const DWORD start = GetTickCount();
  EXPECT_TRUE(Update(L"SILENT?"));
  ExpectStatus(cfrSuccess);
  EXPECT_LT(GetTickCount() - start, 1000u);
  EXPECT_EQ(Read(tcp_, &_CKespTCP::get_State), sckClosed);
}

TEST_F(QueryTest, NoAddress_IsInvalidIPAddress) {
  EXPECT_EQ(Write(tcp_, &_CKespTCP::put_IPAddress, L"0.0.0.0"), S_OK);
  EXPECT_FALSE(Query(L"*IDN?"));
  ExpectStatus(cfrInvalidIPAddress, L"[CKespTCP - Initialize()]", L"Invalid IP Address");
  EXPECT_FALSE(QueryBinary(L"*IDN?"));
  ExpectStatus(cfrInvalidIPAddress, L"[CKespTCP - Initialize()]", L"Invalid IP Address");
  EXPECT_FALSE(Update(L"*IDN?"));
  ExpectStatus(cfrInvalidIPAddress, L"[CKespTCP - Initialize()]", L"Invalid IP Address");
}

TEST_F(QueryTest, NoPort_IsInvalidPort) {
  const auto comm = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  WriteByReference(comm, &_CKespCommObj::put_CommStyle, csTCPIP);
  ComPtr<_CKespTCP> tcp;
  ReadObject(comm, &_CKespCommObj::get_CommObject).As(&tcp);
  EXPECT_EQ(Write(tcp, &_CKespTCP::put_IPAddress, L"127.0.0.1"), S_OK);
  comm_ = comm;
  EXPECT_FALSE(Query(L"*IDN?"));
  ExpectStatus(cfrInvalidPort, L"[CKespTCP - Initialize()]", L"Invalid Port");
}

TEST_F(QueryTest, Refused_IsInitializeFailedAfterTheTimeOut) {
  const RefusingPort nobody;
  EXPECT_EQ(Write(tcp_, &_CKespTCP::put_Port, nobody.number()), S_OK);
  ShortenTimeOut();
  const DWORD start = GetTickCount();
  EXPECT_FALSE(Query(L"*IDN?"));
  const DWORD elapsed = GetTickCount() - start;
  ExpectStatus(cfrInitializeFailed, L"[CKespTCP - Initialize()]",
               L"Timeout - unable to establish connection");
  EXPECT_GE(elapsed, 1000u);
  EXPECT_LT(elapsed, 4000u) << "one attempt, not four";
  SetTarget(tcp_.Get());
  EXPECT_TRUE(Query(L"*IDN?")) << "the next query is not the worse for it";
}

TEST_F(QueryTest, Silent_IsTimeout) {
  ShortenTimeOut();
  EXPECT_FALSE(Query(L"SILENT?"));
  ExpectStatus(cfrTimeout, L"[CKespTCP - ReadLine()]", L"Timeout");
  EXPECT_EQ(reply_.str(), L"");
  EXPECT_FALSE(QueryBinary(L"SILENT?"));
  ExpectStatus(cfrTimeout, L"[CKespTCP - ReadLineBinary()]", L"Timeout");
  EXPECT_EQ(bytes_.type(), VT_EMPTY);
  EXPECT_TRUE(Query(L"*IDN?"));
  ExpectStatus(cfrSuccess);
}

// The transport raises the number of the serial list, which has no status of its own here.
TEST_F(QueryTest, Garbage_IsReadFailedAndLeavesTheReply) {
  EXPECT_FALSE(Query(L"NONASCII?"));
  ExpectStatus(cfrReadFailed, L"CKespTCP - ReadLine()",
               L"Invalid characters received on IP address " + InstrumentHost() + L".");
  EXPECT_NE(reply_.str().find(L"2.0"), std::wstring::npos);
  EXPECT_FALSE(Query(L"GARBAGE?"));
  ExpectStatus(cfrReadFailed, L"CKespTCP - ReadLine()",
               L"Invalid characters received on IP address " + InstrumentHost() + L".");
  EXPECT_TRUE(QueryBinary(L"GARBAGE?")) << "bytes are not checked";
}

// A peer that goes away while a reply is awaited lets the wait run out its time; had it gone before the wait
// began, there is no connection.
TEST_F(QueryTest, PeerClosesOrResets_EndsWithinTheTimeOut) {
  ShortenTimeOut();
  for (const wchar_t* cmd : {L"CLOSE?", L"PARTCLOSE?", L"RESET?"}) {
    const DWORD start = GetTickCount();
    EXPECT_FALSE(Query(cmd));
    EXPECT_LT(GetTickCount() - start, 4000u) << testing::PrintToString(std::wstring(cmd));
    const ECommError status = Read(comm_, &_CKespCommObj::get_CommError);
    EXPECT_TRUE(status == cfrTimeout || status == cfrNoConnection || status == cfrInitializeFailed) << status;
    EXPECT_NE(Read(comm_, &_CKespCommObj::get_CommErrorDescr), L"");
  }
  EXPECT_TRUE(Query(L"*IDN?"));
}

// Handlers run between the command and the read, so they can take the connection away.
TEST_F(QueryTest, PeerClosedBeforeTheRead_IsNoConnection) {
  const auto recorder = EventRecorder::Make(__uuidof(__CKespTCP));
  const Connection connection(tcp_.Get(), __uuidof(__CKespTCP), recorder.Get());
  recorder->handlers[L"SendCompleteEnd"] = [&](DISPPARAMS&) {
    EXPECT_TRUE(PumpUntil([&] { return recorder->Count(L"CloseEnd") == 1; }));
  };
  EXPECT_FALSE(Query(L"CLOSE?"));
  ExpectStatus(cfrNoConnection, L"[CKespTCP - ReadLine()]", L"Socket not connected");
  recorder->journal.clear();
  EXPECT_FALSE(QueryBinary(L"CLOSE?"));
  ExpectStatus(cfrNoConnection, L"[CKespTCP - ReadLineBinary()]", L"Socket not connected");
}

TEST_F(QueryTest, ConnectionClosedByAHandler_IsInitializeFailed) {
  const auto recorder = EventRecorder::Make(__uuidof(__CKespTCP));
  const Connection connection(tcp_.Get(), __uuidof(__CKespTCP), recorder.Get());
  recorder->handlers[L"SendCompleteEnd"] = [&](DISPPARAMS&) {
    EXPECT_TRUE(CallsTrue(tcp_, &_CKespTCP::Uninitialize));
  };
  EXPECT_FALSE(Query(L"*IDN?"));
  ExpectStatus(cfrInitializeFailed, L"[CKespTCP - ReadLine()]", L"Socket not initialized");
}

}  // namespace
}  // namespace kesp::clients
