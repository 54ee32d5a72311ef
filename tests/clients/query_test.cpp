// Whole exchanges of the communication object over a real connection: replies, status, trace, detection.
#include <gtest/gtest.h>

#include <functional>

#include "tests/clients/comm_obj_fixture.h"
#include "tests/clients/event_recorder.h"
#include "tests/clients/late_object.h"
#include "tests/clients/tcp_fixture.h"

namespace kesp::clients {
namespace {

class QueryTest : public CommObjFixture {
 protected:
  void ExpectClosedAndSuccess() {
    ExpectStatus(cfrSuccess);
    EXPECT_EQ(Read(tcp_, &_CKespTCP::get_State), sckClosed);
  }
  void LoseAddress() { EXPECT_EQ(Write(tcp_, &_CKespTCP::put_IPAddress, L"0.0.0.0"), S_OK); }
};

TEST_F(QueryTest, Reply_ReplacesWhatTheArgumentHeld) {
  *reply_.in_out() = SysAllocString(L"something longer than the reply, left from an earlier query");
  EXPECT_TRUE(Query(L"*IDN?"));
  EXPECT_EQ(reply_.str(), kIdentity);
  ExpectClosedAndSuccess();
  EXPECT_TRUE(Query(L"TRICKLE?"));
  EXPECT_EQ(reply_.str(), L"TRICKLE 1.0");
}

TEST_F(QueryTest, BinaryReply_ReplacesWhatTheVariableHeld) {
  for (const Value& before : {Value(), Value(5), Value(L"text")}) {
    bytes_ = before;
    EXPECT_TRUE(QueryBinary(L"ECHO a"));
    EXPECT_EQ(BytesOf(*bytes_.get()), "ECHO a\r");
  }
  EXPECT_TRUE(QueryBinary(L"ECHO b")) << "the variable holds an array by now";
  EXPECT_EQ(BytesOf(*bytes_.get()), "ECHO b\r");
  ExpectClosedAndSuccess();
}

TEST_F(QueryTest, Update_SendsAndDoesNotWait) {
  const DWORD start = GetTickCount();
  EXPECT_TRUE(Update(L"SILENT?"));
  ExpectClosedAndSuccess();
  EXPECT_LT(GetTickCount() - start, 1000u);
}

TEST_F(QueryTest, NoAddress_IsToldByTheStatusAndLeavesTheArguments) {
  LoseAddress();
  *reply_.in_out() = SysAllocString(L"kept");
  bytes_ = Value(5);
  const std::function<bool()> operations[] = {[&] { return Query(L"t"); }, [&] { return QueryBinary(L"t"); },
                                              [&] { return Update(L"t"); }};
  for (const auto& operation : operations) {
    EXPECT_FALSE(operation());
    ExpectStatus(cfrInvalidIPAddress, L"[CKespTCP - Initialize()]", L"Invalid IP Address");
  }
  EXPECT_EQ(reply_.str(), L"kept");
  EXPECT_EQ(V_I4(bytes_.get()), 5);
}

// Waits end after one to two seconds.
TEST_F(QueryTest, Silent_IsATimeoutAndTheNextQueryIsGood) {
  EXPECT_EQ(Write(tcp_, &_CKespTCP::put_TimeOutmSecs, 1000), S_OK);
  EXPECT_FALSE(Query(L"SILENT?"));
  ExpectStatus(cfrTimeout, L"[CKespTCP - ReadLine()]", L"Timeout");
  EXPECT_TRUE(Query(L"*IDN?"));
  ExpectStatus(cfrSuccess);
}

// The transport inside a communication object raises its events to the client as well.
TEST_F(QueryTest, EventsOfItsTransport_ReachTheClient) {
  const auto recorder = EventRecorder::Make(__uuidof(__CKespTCP));
  const Connection connection(tcp_.Get(), __uuidof(__CKespTCP), recorder.Get());
  std::vector<ECommError> seen;
  recorder->handlers[L"DataArrivalEnd"] = [&](DISPPARAMS&) {
    seen.push_back(Read(comm_, &_CKespCommObj::get_CommError));
  };
  EXPECT_TRUE(Query(L"*IDN?"));
  EXPECT_EQ(recorder->Count(L"ConnectEnd"), 1u);
  EXPECT_EQ(seen, std::vector<ECommError>{cfrOtherError}) << "the status while an operation is under way";
}

TEST_F(QueryTest, Detection_FindsTheInstrumentWithAndWithoutTheLevel) {
  VARIANT_BOOL found = 5;
  EXPECT_EQ(RefusalOf(comm_->DetectInstrument(reply_.in_out(), dlSCPIOnly, &found)), Refusal{});
  EXPECT_EQ(found, VARIANT_TRUE);
  EXPECT_EQ(reply_.str(), kIdentity);
  ExpectClosedAndSuccess();
  Value result;
  EXPECT_TRUE(LateObject(comm_).Call(L"DetectInstrument", {Variable(result)}).IsTrue());
  EXPECT_EQ(result.text(), kIdentity);
  const RefusingPort nobody;
  EXPECT_EQ(Write(tcp_, &_CKespTCP::put_Port, nobody.number()), S_OK);
  EXPECT_EQ(RefusalOf(comm_->DetectInstrument(reply_.in_out(), dlSCPIOnly, &found)), Refusal{});
  EXPECT_EQ(found, VARIANT_FALSE);
  EXPECT_EQ(reply_.str(), L"");
}

TEST_F(QueryTest, SetInputMode_LeavesOtherErrorUntilTheNextExchange) {
  EXPECT_EQ(comm_->SetInputMode(imBinary), S_OK);
  ExpectStatus(cfrOtherError);
  EXPECT_TRUE(Query(L"*IDN?"));
  ExpectStatus(cfrSuccess);
}

// The reply comes so late that its arrival is in the reading.
TEST_F(QueryTest, Trace_HoldsItsOwnLinesAndThoseOfTheTransportInOrder) {
  EXPECT_TRUE(Query(L"*IDN?"));
  EXPECT_FALSE(trace_.Exists());
  StartTrace();
  EXPECT_TRUE(Query(L"SLOW?"));
  const std::wstring peer = InstrumentHost() + L":" + std::to_wstring(InstrumentPort());
  ExpectTrace(
      {L"Beginning Query()... (command: SLOW?)", L"TCP: Initialize()", L"Initialize()",
       L"Check IP Address...", L"Check Port...",
       L"Connecting to " + InstrumentHost() + L" on port " + std::to_wstring(InstrumentPort()) + L"...",
       L"Waiting for connection to be established...", L"Connect (" + peer + L")", L"Initialize() Done...",
       L"TCP: WriteLine(SLOW?)", L"Send Progress (" + peer + L") - Sent: 6 Remaining: 0",
       L"Send complete (" + peer + L")", L"TCP: ReadLine()", L"DataArrival (" + peer + L") Bytes: 9",
       L"Socket Data arrived: <SLOW 1.0\r> (length: 9  last byte: 13 EOS: 13 EOS?: True)",
       L"TCP: result- SLOW 1.0", L"TCP: Uninitialize()", L"Exiting Query()...(command: SLOW?)"});
}

TEST_F(QueryTest, TraceOfAnEarlierDay_GetsItsDateAndANewOneIsBegun) {
  const std::wstring date = trace_.WriteDaysAgo(3, "old line\r\n");
  const TemporaryFile old(trace_.path() + L" " + date);
  StartTrace();
  LoseAddress();
  EXPECT_FALSE(Update(L"t"));
  EXPECT_EQ(old.Content(), "old line\r\n");
  EXPECT_EQ(trace_.Messages().front(), L"Beginning Update()...(command: t)");
}

TEST_F(QueryTest, TraceCannotBeWritten_ChangesNothing) {
  for (const wchar_t* path : {L"Z:\\no such folder\\trace.log", L"C:\\windows", L"", L"bad|name?*<>"}) {
    EXPECT_EQ(Write(comm_, &_CKespCommObj::put_DebugFilename, path), S_OK);
    EXPECT_EQ(Write(comm_, &_CKespCommObj::put_Debugging, VARIANT_TRUE), S_OK);
    EXPECT_TRUE(Query(L"*IDN?")) << testing::PrintToString(std::wstring(path));
  }
}

}  // namespace
}  // namespace kesp::clients
