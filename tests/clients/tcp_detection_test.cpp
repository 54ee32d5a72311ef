// Detection at the one address of the network transport, through the interfaces that clients use.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "tests/clients/late_object.h"
#include "tests/clients/released_search.h"
#include "tests/clients/tcp_detection_fixture.h"

namespace kesp::clients {
namespace {

constexpr wchar_t kIdentity[] = L"KESP,7100,SIM00001,1.0";

std::wstring Trial(const std::wstring& cmd) {
  return L"AutoDetectUpdate(" + cmd + L"," + InstrumentHost() + L"," + std::to_wstring(InstrumentPort()) +
         L",&False)";
}

class TcpDetectionTest : public TcpDetectionStage {
 protected:
  void On(const std::wstring& event, const std::function<void()>& action) {
    recorder_->handlers[event] = [action](DISPPARAMS&) { action(); };
  }
  // The journal without what every connection and reply brings.
  Lines OwnEvents() const {
    Lines own;
    std::copy_if(journal().begin(), journal().end(), std::back_inserter(own),
                 [](const std::wstring& entry) { return entry.starts_with(L"AutoDetect"); });
    return own;
  }
};

TEST_F(TcpDetectionTest, InstrumentAnswers_FoundAtTheFirstCommand) {
  EXPECT_EQ(AutoDetect(), kDone);
  ExpectFound(kIdentity);
  ExpectRestored(sckTCPProtocol);
  EXPECT_EQ(OwnEvents(), (Lines{L"AutoDetectBegin()", Trial(L"*IDN?"), L"AutoDetectEnd()"}));
  EXPECT_EQ(journal().front(), L"AutoDetectBegin()");
  EXPECT_EQ(journal()[1], L"ConnectBegin()");
  EXPECT_EQ(journal().back(), L"AutoDetectEnd()");
  // The connection is there to be used.
  EXPECT_EQ(Exchange(L"*VER"), L"1.0");
}

TEST_F(TcpDetectionTest, LevelBelowOne_ConnectsAndFindsNothing) {
  EXPECT_EQ(AutoDetect(static_cast<EDetectLevel>(0)), kDone);
  ExpectNothingFound();
  EXPECT_EQ(OwnEvents(), (Lines{L"AutoDetectBegin()", L"AutoDetectEnd()"}));
  EXPECT_EQ(recorder_->Count(L"ConnectEnd"), 1U);
  EXPECT_EQ(Read(tcp_, &_CKespTCP::get_State), sckConnected);
}

TEST_F(TcpDetectionTest, Abort_EndsTheSearch) {
  recorder_->handlers[L"AutoDetectUpdate"] = [](DISPPARAMS& arguments) {
    *V_BOOLREF(&arguments.rgvarg[0]) = VARIANT_TRUE;
  };
  EXPECT_EQ(AutoDetect(), kDone);
  ExpectNothingFound();
  ExpectRestored(sckTCPProtocol);
  EXPECT_EQ(recorder_->Count(L"AutoDetectUpdate"), 1U);
  EXPECT_EQ(recorder_->Count(L"SendCompleteEnd"), 0U);
  EXPECT_EQ(Read(tcp_, &_CKespTCP::get_State), sckConnected);
}

TEST_F(TcpDetectionTest, NobodyListens_NothingIsFound) {
  const RefusingPort port;
  EXPECT_EQ(Write(tcp_, &_CKespTCP::put_Port, port.number()), S_OK);
  EXPECT_EQ(AutoDetect(), kDone);
  ExpectNothingFound();
  ExpectRestored(sckTCPProtocol);
  EXPECT_EQ(OwnEvents(), (Lines{L"AutoDetectBegin()", L"AutoDetectEnd()"}));
}

TEST_F(TcpDetectionTest, NoAddress_RaisesAfterTheEndIsTold) {
  EXPECT_EQ(Write(tcp_, &_CKespTCP::put_IPAddress, L"0.0.0.0"), S_OK);
  EXPECT_EQ(AutoDetect(),
            (Refusal{ERR_INVALID_IP_ADDRESS, L"[CKespTCP - Initialize()]", L"Invalid IP Address"}));
  ExpectNothingFound();
  ExpectRestored(sckTCPProtocol);
  EXPECT_EQ(journal(), (Lines{L"AutoDetectBegin()", L"AutoDetectEnd()"}));
}

TEST_F(TcpDetectionTest, Handlers_ReadTheSettingsOfTheSearch) {
  std::vector<short> seen;
  const auto read = [&] { seen.push_back(Read(tcp_, &_CKespTCP::get_TimeOutmSecs)); };
  On(L"AutoDetectBegin", read);
  On(L"AutoDetectUpdate", read);
  On(L"AutoDetectEnd", read);
  EXPECT_EQ(AutoDetect(), kDone);
  EXPECT_EQ(seen, (std::vector<short>{1000, 1000, 5000}));
}

TEST_F(TcpDetectionTest, HandlerConversesItself_FindsAllTheSame) {
  On(L"AutoDetectUpdate", [&] { EXPECT_EQ(Exchange(L"MEAS?").size(), 5U); });
  EXPECT_EQ(AutoDetect(), kDone);
  ExpectFound(kIdentity);
}

TEST_F(TcpDetectionTest, HandlerClosesTheConnection_NothingIsFound) {
  On(L"AutoDetectUpdate", [&] { EXPECT_TRUE(Uninitialize()); });
  EXPECT_EQ(AutoDetect(), kDone);
  ExpectNothingFound();
  EXPECT_EQ(recorder_->Count(L"AutoDetectUpdate"), 3U);
}

TEST_F(TcpDetectionTest, HandlerDisconnects_FindsAllTheSame) {
  On(L"AutoDetectBegin", [&] { connection_.Disconnect(); });
  EXPECT_EQ(AutoDetect(), kDone);
  ExpectFound(kIdentity);
  EXPECT_EQ(journal(), Lines{L"AutoDetectBegin()"});
}

TEST_F(TcpDetectionTest, Events_HaveTheirDeclaredTypes) {
  std::vector<VARTYPE> types;
  recorder_->handlers[L"AutoDetectUpdate"] = [&types](DISPPARAMS& arguments) {
    for (UINT i = arguments.cArgs; i-- > 0;) types.push_back(V_VT(&arguments.rgvarg[i]));
  };
  EXPECT_EQ(AutoDetect(dlSCPIOnly), kDone);
  EXPECT_EQ(types, (std::vector<VARTYPE>{VT_BSTR, VT_BSTR, VT_I2, VT_BYREF | VT_BOOL}));
}

TEST_F(TcpDetectionTest, LateBound_WithAVariableAndWithoutTheLevel) {
  const LateObject late(tcp_);
  Value result(5);
  EXPECT_TRUE(late.Call(L"AutoDetect", {Variable(result)}).IsTrue());
  EXPECT_EQ(result.type(), VT_BSTR);
  EXPECT_EQ(result.text(), kIdentity);
}

TEST_F(TcpDetectionTest, LateBound_FailureIsInExcepInfoAndTheVariableEmpty) {
  EXPECT_EQ(Write(tcp_, &_CKespTCP::put_IPAddress, L"0.0.0.0"), S_OK);
  const LateObject late(tcp_);
  Value result(L"before");
  const Outcome outcome =
      late.Call(L"AutoDetect", {Variable(result)}, {{L"DetectLevel", Plain(Value(dlSCPIOnly))}});
  EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
  EXPECT_EQ(outcome.scode, ERR_INVALID_IP_ADDRESS);
  EXPECT_EQ(outcome.source, L"[CKespTCP - Initialize()]");
  EXPECT_EQ(result.text(), L"");
}

class TcpDetectionLastReferenceTest : public ReleasedSearchTest {};

TEST_P(TcpDetectionLastReferenceTest, Released_TheSearchEndsAllTheSame) {
  SetTarget(tcp_.Get());
  Text result;
  ExpectFoundAllTheSame(result);
  EXPECT_EQ(result.str(), kIdentity);
}

INSTANTIATE_TEST_SUITE_P(Event, TcpDetectionLastReferenceTest,
                         testing::Values(L"AutoDetectBegin", L"ConnectEnd", L"AutoDetectUpdate",
                                         L"SendCompleteEnd", L"DataArrivalEnd", L"AutoDetectEnd"),
                         EventName);

// At an instrument that knows "t" alone.
class TcpOldInstrumentTest : public TcpDetectionTest {};

TEST_F(TcpOldInstrumentTest, AnswersTheLastCommand_FoundAfterTheOthersWereTried) {
  const DWORD start = GetTickCount();
  EXPECT_EQ(AutoDetect(), kDone);
  const DWORD elapsed = GetTickCount() - start;
  ExpectFound(L"21.5");
  ExpectRestored(sckTCPProtocol);
  EXPECT_EQ(OwnEvents(),
            (Lines{L"AutoDetectBegin()", Trial(L"*IDN?"), Trial(L"*VER"), Trial(L"t"), L"AutoDetectEnd()"}));
  // One to two seconds for each of the two that stay unanswered.
  EXPECT_GE(elapsed, 2000U);
  EXPECT_LT(elapsed, 4000U + 3000U);
}

TEST_F(TcpOldInstrumentTest, LevelWithoutThatCommand_FindsNothing) {
  EXPECT_EQ(AutoDetect(dlCommonCommands), kDone);
  ExpectNothingFound();
  ExpectRestored(sckTCPProtocol);
  EXPECT_EQ(recorder_->Count(L"AutoDetectUpdate"), 2U);
}

// At an instrument that answers after it was given up.
class TcpLateInstrumentTest : public TcpDetectionTest {};

TEST_F(TcpLateInstrumentTest, LateAnswer_IsTheReplyToTheNextCommandUnlessTheConnectionIsMadeAnew) {
  EXPECT_EQ(AutoDetect(dlSCPIOnly), kDone);
  ExpectNothingFound();
  // Its own answer may be behind that already.
  EXPECT_TRUE(Exchange(L"MEAS?").starts_with(L"KESP,LATE,SIM00077,1.0"));
  EXPECT_TRUE(Uninitialize());
  EXPECT_TRUE(Initialize());
  EXPECT_EQ(Exchange(L"MEAS?"), L"7.7");
}

TEST_F(TcpLateInstrumentTest, FoundByTheLateAnswer_TheOneConnectionStays) {
  EXPECT_EQ(AutoDetect(), kDone);
  ExpectFound(L"KESP,LATE,SIM00077,1.0");
  EXPECT_EQ(Read(tcp_, &_CKespTCP::get_State), sckConnected);
  EXPECT_EQ(recorder_->Count(L"ConnectEnd"), 1U);
  // The answer to the second command is still to come.
  EXPECT_TRUE(Exchange(L"MEAS?").starts_with(L"1.0"));
}

}  // namespace
}  // namespace kesp::clients
