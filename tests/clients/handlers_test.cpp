// Handlers that act on the object that calls them: calling back in, disconnecting, letting the last reference
// go.
#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "tests/clients/comm_obj_fixture.h"
#include "tests/clients/tcp_fixture.h"

namespace kesp::clients {
namespace {

class HandlersTest : public TcpEventsFixture {};

TEST_F(HandlersTest, InitializesAgainWhileConnecting) {
  On(L"ConnectEnd", [&] { EXPECT_TRUE(Initialize()); });
  EXPECT_TRUE(Initialize());
  EXPECT_EQ(Exchange(L"*IDN?"), kIdentity);
}

TEST_F(HandlersTest, QueriesOnAnotherObject) {
  Initialize();
  OtherCommObj other;
  UseInstrument(other.comm_.Get());
  On(L"DataArrivalBegin", [&] {
    recorder_->handlers.clear();
    EXPECT_TRUE(other.Query(L"ECHO other"));
  });
  EXPECT_EQ(Exchange(L"ECHO first"), L"ECHO first");
  EXPECT_EQ(other.reply_.str(), L"ECHO other");
}

TEST_F(HandlersTest, DisconnectsItself) {
  On(L"ConnectBegin", [&] { connection_.Disconnect(); });
  EXPECT_TRUE(Initialize());
  EXPECT_EQ(journal(), Lines{L"ConnectBegin()"});
}

TEST_F(HandlersTest, DisconnectsTheNext_WhichIsNotCalledAnyMore) {
  const auto second = EventRecorder::Make(__uuidof(__CKespTCP));
  Connection connection(tcp_.Get(), __uuidof(__CKespTCP), second.Get());
  On(L"ConnectBegin", [&] { connection.Disconnect(); });
  EXPECT_TRUE(Initialize());
  EXPECT_EQ(second->journal, Lines{});
  EXPECT_EQ(second->references(), 1u);
}

TEST_F(HandlersTest, ConnectsAnother_WhichHearsFromTheNextEventOn) {
  const auto second = EventRecorder::Make(__uuidof(__CKespTCP));
  std::unique_ptr<Connection> connection;
  On(L"ConnectBegin",
     [&] { connection = std::make_unique<Connection>(tcp_.Get(), __uuidof(__CKespTCP), second.Get()); });
  EXPECT_TRUE(Initialize());
  EXPECT_EQ(second->journal, Lines{L"ConnectEnd()"});
}

// The object lives as long as the call that is on its way.
class LastReferenceTest : public TcpFixture {
 protected:
  LastReferenceTest() { Connection(tcp_.Get(), __uuidof(__CKespTCP), recorder_.Get()).Abandon(); }

  // Lets go of the object at the event. The raw pointer stays good for the call on its way.
  _CKespTCP* ReleaseAt(const std::wstring& event) {
    recorder_->handlers[event] = [this](DISPPARAMS&) { tcp_.Reset(); };
    return tcp_.Get();
  }
  // An object that is gone has let go of its handlers.
  void ExpectGone() const {
    EXPECT_EQ(tcp_, nullptr);
    EXPECT_EQ(recorder_->references(), 1u);
  }

  ComPtr<EventRecorder> recorder_ = EventRecorder::Make(__uuidof(__CKespTCP));
  VARIANT_BOOL answer_ = VARIANT_FALSE;
};

TEST_F(LastReferenceTest, ReleasedDuringInitialize) {
  EXPECT_EQ(ReleaseAt(L"ConnectBegin")->Initialize(&answer_), S_OK);
  EXPECT_EQ(answer_, VARIANT_TRUE);
  ExpectGone();
}

TEST_F(LastReferenceTest, ReleasedDuringWriteLine) {
  EXPECT_TRUE(Initialize());
  EXPECT_EQ(ReleaseAt(L"SendProgressBegin")->WriteLine(Text(L"*IDN?").get(), &answer_), S_OK);
  ExpectGone();
}

TEST_F(LastReferenceTest, ReleasedDuringReadLine) {
  EXPECT_TRUE(Initialize());
  EXPECT_EQ(WriteLine(L"SPLIT?"), S_OK);
  EXPECT_EQ(ReleaseAt(L"DataArrivalBegin")->ReadLine(reply_.in_out(), &answer_), S_OK);
  EXPECT_EQ(reply_.str(), L"SPLIT 1.0,2.0,3.0") << "the read goes on to its end";
  ExpectGone();
}

// Here no call of the object is on its way: the event comes from the client's own message loop.
TEST_F(LastReferenceTest, ReleasedWhileMessagesArePumped) {
  EXPECT_TRUE(Initialize());
  EXPECT_EQ(WriteLine(L"SLOW?"), S_OK);
  ReleaseAt(L"DataArrivalBegin");
  EXPECT_TRUE(PumpUntil([&] { return tcp_ == nullptr; }));
  ExpectGone();
}

// A released object with an open connection leaves nothing behind that could call it.
TEST_F(LastReferenceTest, ReleasedWhileAReplyIsOnItsWay) {
  EXPECT_TRUE(Initialize());
  EXPECT_EQ(WriteLine(L"TRICKLE?"), S_OK);
  tcp_.Reset();
  const Lines heard = recorder_->journal;
  PumpUntil([] { return false; }, 300);  // the whole reply takes 120 ms
  EXPECT_EQ(recorder_->journal, heard);
  ExpectGone();
}

class FacadeLastReferenceTest : public CommObjFixture {};

TEST_F(FacadeLastReferenceTest, ReleasedWithItsTransportDuringAQuery) {
  const auto recorder = EventRecorder::Make(__uuidof(__CKespTCP));
  Connection(tcp_.Get(), __uuidof(__CKespTCP), recorder.Get()).Abandon();
  recorder->handlers[L"DataArrivalBegin"] = [&](DISPPARAMS&) {
    tcp_.Reset();
    comm_.Reset();
  };
  EXPECT_TRUE(Query(L"*IDN?"));
  EXPECT_EQ(reply_.str(), kIdentity);
  EXPECT_EQ(comm_, nullptr);
  EXPECT_EQ(recorder->references(), 1u) << "the transport is gone, and so is who held it";
}

}  // namespace
}  // namespace kesp::clients
