// The events of the network transport as a connected handler hears them.
#include <gtest/gtest.h>

#include "tests/clients/tcp_fixture.h"
#include "tests/clients/temporary_file.h"

namespace kesp::clients {
namespace {

class TcpEventsTest : public TcpEventsFixture {
 protected:
  // The transport is sent where nobody listens; after one second it gives up.
  Refusal BeRefused() {
    EXPECT_EQ(Write(tcp_, &_CKespTCP::put_Port, nobody_.number()), S_OK);
    SetTimeOut(1000);
    const DWORD start = GetTickCount();
    const Refusal refusal = RefusalOf(Judge([&](VARIANT_BOOL* answer) { return tcp_->Initialize(answer); }));
    EXPECT_GE(GetTickCount() - start, 990u);
    EXPECT_LT(GetTickCount() - start, 5000u) << "one attempt, not four";
    return refusal;
  }

  const RefusingPort nobody_;
};

TEST_F(TcpEventsTest, Conversation_TellsConnectionSendingAndArrival) {
  EXPECT_TRUE(Initialize());
  EXPECT_EQ(Read(tcp_, &_CKespTCP::get_State), sckConnected);
  EXPECT_TRUE(Initialize()) << "connected already";
  EXPECT_EQ(Exchange(L"ECHO abc"), L"ECHO abc");
  EXPECT_TRUE(Uninitialize());
  EXPECT_TRUE(Uninitialize()) << "closed already";
  EXPECT_EQ(Read(tcp_, &_CKespTCP::get_State), sckClosed);
  EXPECT_EQ(journal(), (Lines{L"ConnectBegin()", L"ConnectEnd()", L"SendProgressBegin(9,0)",
                              L"SendProgressEnd()", L"SendCompleteBegin()", L"SendCompleteEnd()",
                              L"DataArrivalBegin(9)", L"DataArrivalEnd()"}));
}

TEST_F(TcpEventsTest, SplitReply_EachArrivalTellsAllThatWaits) {
  Initialize();
  recorder_->journal.clear();
  EXPECT_EQ(Exchange(L"TRICKLE?"), L"TRICKLE 1.0");
  EXPECT_GT(recorder_->Count(L"DataArrivalBegin"), 1u);
  EXPECT_EQ(journal()[journal().size() - 2], L"DataArrivalBegin(12)");
  long last = 0;
  for (const std::wstring& entry : journal()) {
    if (!entry.starts_with(L"DataArrivalBegin(")) continue;
    const long total = std::stol(entry.substr(17));
    EXPECT_GT(total, last);
    last = total;
  }
}

TEST_F(TcpEventsTest, PeerCloses_IsToldOnceBehindItsReply) {
  Initialize();
  EXPECT_EQ(WriteLine(L"FULLCLOSE?"), S_OK);
  EXPECT_TRUE(PumpUntil([&] { return recorder_->Count(L"CloseEnd") == 1; }));
  ASSERT_GE(journal().size(), 4u);
  const auto end = journal().end();
  EXPECT_EQ(Lines(end - 4, end),
            (Lines{L"DataArrivalBegin(9)", L"DataArrivalEnd()", L"CloseBegin()", L"CloseEnd()"}));
  EXPECT_EQ(Read(tcp_, &_CKespTCP::get_State), sckClosing);
  EXPECT_EQ(ReadLine(), ERR_NO_CONNECTION);
}

TEST_F(TcpEventsTest, Refused_ErrorTellsTheSocketsOwnArguments) {
  EXPECT_EQ(BeRefused(), (Refusal{ERR_TIMEOUT, L"[CKespTCP - Initialize()]",
                                  L"Timeout - unable to establish connection"}));
  EXPECT_EQ(Read(tcp_, &_CKespTCP::get_State), sckError);
  ASSERT_EQ(journal().size(), 2u);
  // Number, &Description, Scode (facility control), Source, HelpFile, HelpContext, &CancelDisplay.
  EXPECT_EQ(journal()[0], L"ErrorBegin(10061,&Connection is forcefully rejected," +
                              std::to_wstring(static_cast<long>(0x800A274D)) + L",KespWinsock,,0,&False)");
  EXPECT_EQ(journal()[1], L"ErrorEnd()");
}

// What a handler leaves in Description is what the next one hears and what the transport goes on with.
TEST_F(TcpEventsTest, Error_HandlersShareTheArgumentsByReference) {
  const TemporaryFile log;
  Write(tcp_, &_CKespTCP::put_LogFilename, log.path());
  Write(tcp_, &_CKespTCP::put_CreateLogFile, VARIANT_TRUE);
  recorder_->handlers[L"ErrorBegin"] = [](DISPPARAMS& arguments) {
    SysReAllocString(V_BSTRREF(&arguments.rgvarg[5]), L"changed");
    *V_BOOLREF(&arguments.rgvarg[0]) = 1;  // true as some clients write it
  };
  const auto second = EventRecorder::Make(__uuidof(__CKespTCP));
  const Connection connection(tcp_.Get(), __uuidof(__CKespTCP), second.Get());
  EXPECT_EQ(BeRefused().result, ERR_TIMEOUT);
  ASSERT_FALSE(second->journal.empty());
  EXPECT_NE(second->journal[0].find(L"&changed"), std::wstring::npos);
  EXPECT_NE(second->journal[0].find(L"&True"), std::wstring::npos);
  EXPECT_NE(log.Content().find("\tError: 10061 - changed ("), std::string::npos) << log.Content();
}

TEST_F(TcpEventsTest, InvalidCharacters_TellsReplyPositionAndAddressBeforeItRaises) {
  Initialize();
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
  EXPECT_EQ(Exchange(L"*IDN?"), kIdentity);
}

TEST_F(TcpEventsTest, SeveralHandlers_AreCalledInTheOrderOfConnectionAlsoByTheGeneralInterface) {
  Lines order;
  recorder_->listener = [&](const std::wstring& entry) { order.push_back(L"1 " + entry); };
  const auto script = EventRecorder::Make(__uuidof(__CKespTCP));
  script->knows_events = false;
  script->listener = [&](const std::wstring& entry) { order.push_back(L"2 " + entry); };
  const Connection connection(tcp_.Get(), IID_IDispatch, script.Get());
  EXPECT_TRUE(Initialize());
  EXPECT_EQ(order, (Lines{L"1 ConnectBegin()", L"2 ConnectBegin()", L"1 ConnectEnd()", L"2 ConnectEnd()"}));
}

}  // namespace
}  // namespace kesp::clients
