// The events of the network transport as a connected handler hears them.
#include <gtest/gtest.h>

#include "tests/clients/tcp_fixture.h"
#include "tests/clients/temporary_file.h"

namespace kesp::clients {
namespace {

class TcpEventsTest : public TcpEventsFixture {};

TEST_F(TcpEventsTest, Initialize_TellsTheConnection) {
  EXPECT_TRUE(Initialize());
  EXPECT_EQ(journal(), (Lines{L"ConnectBegin()", L"ConnectEnd()"}));
  EXPECT_EQ(Read(tcp_, &_CKespTCP::get_State), sckConnected);
  EXPECT_TRUE(Initialize()) << "connected already";
  EXPECT_EQ(journal().size(), 2u);
}

TEST_F(TcpEventsTest, Exchange_TellsSendingThenArrival) {
  Initialize();
  recorder_->journal.clear();
  EXPECT_EQ(Exchange(L"ECHO abc"), L"ECHO abc");
  EXPECT_EQ(journal(), (Lines{L"SendProgressBegin(9,0)", L"SendProgressEnd()", L"SendCompleteBegin()",
                              L"SendCompleteEnd()", L"DataArrivalBegin(9)", L"DataArrivalEnd()"}));
}

TEST_F(TcpEventsTest, SplitReply_EachArrivalTellsAllThatWaits) {
  Initialize();
  recorder_->journal.clear();
  EXPECT_EQ(Exchange(L"TRICKLE?"), L"TRICKLE 1.0");
  EXPECT_GT(recorder_->Count(L"DataArrivalBegin"), 1u);
  EXPECT_EQ(recorder_->Count(L"DataArrivalBegin"), recorder_->Count(L"DataArrivalEnd"));
  EXPECT_EQ(journal()[journal().size() - 2], L"DataArrivalBegin(12)");
  long last = 0;
  for (const std::wstring& entry : journal()) {
    if (!entry.starts_with(L"DataArrivalBegin(")) continue;
    const long total = std::stol(entry.substr(17));
    EXPECT_GT(total, last);
    last = total;
  }
}

TEST_F(TcpEventsTest, Uninitialize_TellsNothing) {
  Initialize();
  recorder_->journal.clear();
  EXPECT_TRUE(Uninitialize());
  EXPECT_EQ(journal(), Lines{});
  EXPECT_EQ(Read(tcp_, &_CKespTCP::get_State), sckClosed);
  EXPECT_TRUE(Uninitialize()) << "closed already";
}

TEST_F(TcpEventsTest, PeerCloses_IsToldOnceBehindItsReply) {
  Initialize();
  recorder_->journal.clear();
  EXPECT_EQ(WriteLine(L"FULLCLOSE?"), S_OK);
  EXPECT_TRUE(PumpUntil([&] { return recorder_->Count(L"CloseEnd") == 1; }));
  ASSERT_GE(journal().size(), 4u);
  const auto end = journal().end();
  EXPECT_EQ(Lines(end - 4, end),
            (Lines{L"DataArrivalBegin(9)", L"DataArrivalEnd()", L"CloseBegin()", L"CloseEnd()"}));
  EXPECT_EQ(Read(tcp_, &_CKespTCP::get_State), sckClosing);
  EXPECT_EQ(RefusalOf(ReadLine()),
            (Refusal{ERR_NO_CONNECTION, L"[CKespTCP - ReadLine()]", L"Socket not connected"}));
  EXPECT_EQ(RefusalOf(WriteLine(L"t")),
            (Refusal{ERR_NO_CONNECTION, L"[CKespTCP - WriteLine()]", L"Socket not connected"}));
}

TEST_F(TcpEventsTest, Refused_ErrorTellsTheSocketsOwnArguments) {
  const RefusingPort nobody;
  Write(tcp_, &_CKespTCP::put_Port, nobody.number());
  SetTimeOut(1000);
  VARIANT_BOOL answer = VARIANT_TRUE;
  EXPECT_EQ(RefusalOf(tcp_->Initialize(&answer)), (Refusal{ERR_TIMEOUT, L"[CKespTCP - Initialize()]",
                                                           L"Timeout - unable to establish connection"}));
  EXPECT_EQ(answer, VARIANT_FALSE);
  EXPECT_EQ(Read(tcp_, &_CKespTCP::get_State), sckError);
  ASSERT_EQ(journal().size(), 2u);
  // Number, &Description, Scode (facility control), Source, HelpFile, HelpContext, &CancelDisplay.
  EXPECT_TRUE(journal()[0].starts_with(L"ErrorBegin(10061,&")) << testing::PrintToString(journal()[0]);
  EXPECT_NE(
      journal()[0].find(L"," + std::to_wstring(static_cast<long>(0x800A274D)) + L",KespWinsock,,0,&False)"),
      std::wstring::npos)
      << testing::PrintToString(journal()[0]);
  EXPECT_EQ(journal()[1], L"ErrorEnd()");
}

// What a handler leaves in Description is what the transport goes on with.
TEST_F(TcpEventsTest, Error_ChangedDescriptionReachesTheLog) {
  const RefusingPort nobody;
  const TemporaryFile log;
  Write(tcp_, &_CKespTCP::put_Port, nobody.number());
  Write(tcp_, &_CKespTCP::put_LogFilename, log.path());
  Write(tcp_, &_CKespTCP::put_CreateLogFile, VARIANT_TRUE);
  SetTimeOut(1000);
  recorder_->handlers[L"ErrorBegin"] = [](DISPPARAMS& arguments) {
    SysReAllocString(V_BSTRREF(&arguments.rgvarg[5]), L"changed");
  };
  VARIANT_BOOL answer = VARIANT_TRUE;
  EXPECT_EQ(tcp_->Initialize(&answer), ERR_TIMEOUT);
  EXPECT_NE(log.Content().find("\tError: 10061 - changed ("), std::string::npos) << log.Content();
}

TEST_F(TcpEventsTest, Error_HandlersShareTheArgumentsByReference) {
  const RefusingPort nobody;
  Write(tcp_, &_CKespTCP::put_Port, nobody.number());
  SetTimeOut(1000);
  recorder_->handlers[L"ErrorBegin"] = [](DISPPARAMS& arguments) {
    BSTR* description = V_BSTRREF(&arguments.rgvarg[5]);
    SysReAllocString(description, L"changed");
    *V_BOOLREF(&arguments.rgvarg[0]) = 1;  // true as some clients write it
  };
  const auto second = EventRecorder::Make(__uuidof(__CKespTCP));
  const Connection connection(tcp_.Get(), __uuidof(__CKespTCP), second.Get());
  VARIANT_BOOL answer = VARIANT_TRUE;
  EXPECT_EQ(tcp_->Initialize(&answer), ERR_TIMEOUT);
  ASSERT_FALSE(second->journal.empty());
  EXPECT_NE(second->journal[0].find(L"&changed"), std::wstring::npos);
  EXPECT_NE(second->journal[0].find(L"&True"), std::wstring::npos);
}

TEST_F(TcpEventsTest, InvalidCharacters_TellsReplyPositionAndAddressBeforeItRaises) {
  Initialize();
  recorder_->journal.clear();
  WriteLine(L"NONASCII?");
  EXPECT_EQ(RefusalOf(ReadLine()),
            (Refusal{ERR_INVALID_CHARACTERS, L"CKespTCP - ReadLine()",
                     L"Invalid characters received on IP address " + InstrumentHost() + L"."}));
  EXPECT_EQ(journal().back(), L"ReadInvalidChars(" + reply_.str() + L",4," + InstrumentHost() + L")");
  EXPECT_EQ(reply_.str().size(), 8u) << "the reply is left as it came";
}

TEST_F(TcpEventsTest, HandlersFail_NothingChanges) {
  recorder_->result = E_FAIL;
  EXPECT_TRUE(Initialize());
  EXPECT_EQ(Exchange(L"*IDN?"), L"KESP,TORTURE,SIM00666,1.0");
}

TEST_F(TcpEventsTest, HandlerOfTheGeneralInterface_HearsToo) {
  const auto script = EventRecorder::Make(__uuidof(__CKespTCP));
  script->knows_events = false;
  const Connection connection(tcp_.Get(), IID_IDispatch, script.Get());
  EXPECT_TRUE(Initialize());
  EXPECT_EQ(script->journal, (Lines{L"ConnectBegin()", L"ConnectEnd()"}));
}

TEST_F(TcpEventsTest, SeveralHandlers_AreCalledInTheOrderOfConnection) {
  Lines order;
  recorder_->listener = [&](const std::wstring& entry) { order.push_back(L"1 " + entry); };
  const auto second = EventRecorder::Make(__uuidof(__CKespTCP));
  second->listener = [&](const std::wstring& entry) { order.push_back(L"2 " + entry); };
  const Connection connection(tcp_.Get(), __uuidof(__CKespTCP), second.Get());
  EXPECT_TRUE(Initialize());
  EXPECT_EQ(order, (Lines{L"1 ConnectBegin()", L"2 ConnectBegin()", L"1 ConnectEnd()", L"2 ConnectEnd()"}));
}

// The transport inside a communication object raises its events to the client as well.
TEST(TransportEventsTest, TransportOfAFacade_RaisesEventsDuringAQuery) {
  const Apartment apartment;
  const auto comm = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  const auto tcp = UseInstrument(comm.Get());
  const auto recorder = EventRecorder::Make(__uuidof(__CKespTCP));
  const Connection connection(tcp.Get(), __uuidof(__CKespTCP), recorder.Get());
  std::vector<ECommError> seen;
  recorder->handlers[L"DataArrivalEnd"] = [&](DISPPARAMS&) {
    seen.push_back(Read(comm, &_CKespCommObj::get_CommError));
  };
  Text reply;
  VARIANT_BOOL answer = VARIANT_FALSE;
  EXPECT_EQ(comm->Query(reply.in_out(), Text(L"*IDN?").get(), nullptr, nullptr, &answer), S_OK);
  EXPECT_EQ(recorder->Count(L"ConnectEnd"), 1u);
  EXPECT_EQ(seen, std::vector<ECommError>{cfrOtherError}) << "the status while an operation is under way";
}

}  // namespace
}  // namespace kesp::clients
