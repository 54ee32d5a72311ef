// Handlers that act on the object that calls them: calling back in, disconnecting, letting the last reference
// go.
#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "tests/clients/comm_obj_fixture.h"
#include "tests/clients/tcp_fixture.h"

namespace kesp::clients {
namespace {

class HandlersTest : public TcpEventsFixture {
 protected:
  void On(const std::wstring& event, std::function<void()> action) {
    recorder_->handlers[event] = [action = std::move(action)](DISPPARAMS&) { action(); };
  }
};

TEST_F(HandlersTest, ReadsProperties) {
  std::vector<EKespTCPState> states;
  On(L"ConnectBegin", [&] { states.push_back(Read(tcp_, &_CKespTCP::get_State)); });
  EXPECT_TRUE(Initialize());
  EXPECT_EQ(states, std::vector<EKespTCPState>{sckConnected});
}

TEST_F(HandlersTest, InitializesAgainWhileConnecting) {
  On(L"ConnectEnd", [&] { EXPECT_TRUE(Initialize()); });
  EXPECT_TRUE(Initialize());
  EXPECT_EQ(Exchange(L"*IDN?"), L"KESP,TORTURE,SIM00666,1.0");
}

TEST_F(HandlersTest, UninitializesWhileConnecting_InitializeTimesOut) {
  SetTimeOut(1000);
  On(L"ConnectEnd", [&] { EXPECT_TRUE(Uninitialize()); });
  VARIANT_BOOL answer = VARIANT_TRUE;
  EXPECT_EQ(tcp_->Initialize(&answer), ERR_TIMEOUT);
  EXPECT_EQ(Read(tcp_, &_CKespTCP::get_State), sckClosed);
}

TEST_F(HandlersTest, UninitializesWhileReading_ReadTimesOut) {
  Initialize();
  SetTimeOut(1000);
  On(L"DataArrivalBegin", [&] { EXPECT_TRUE(Uninitialize()); });
  WriteLine(L"*IDN?");
  const HRESULT result = ReadLine();
  EXPECT_TRUE(result == ERR_TIMEOUT || result == ERR_NOT_INITIALIZED) << std::hex << result;
  EXPECT_EQ(Read(tcp_, &_CKespTCP::get_State), sckClosed);
}

TEST_F(HandlersTest, QueriesOnAnotherObject) {
  Initialize();
  const auto other = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  UseInstrument(other.Get());
  Text other_reply;
  On(L"DataArrivalBegin", [&] {
    recorder_->handlers.clear();
    VARIANT_BOOL answer = VARIANT_FALSE;
    EXPECT_EQ(other->Query(other_reply.in_out(), Text(L"ECHO other").get(), nullptr, nullptr, &answer), S_OK);
    EXPECT_EQ(answer, VARIANT_TRUE);
  });
  EXPECT_EQ(Exchange(L"ECHO first"), L"ECHO first");
  EXPECT_EQ(other_reply.str(), L"ECHO other");
}

TEST_F(HandlersTest, ReadsTheReplyItself) {
  Initialize();
  SetTimeOut(1000);
  Text taken;
  On(L"DataArrivalEnd", [&] {
    recorder_->handlers.clear();
    VARIANT_BOOL answer = VARIANT_FALSE;
    EXPECT_EQ(tcp_->ReadLine(taken.in_out(), &answer), S_OK);
  });
  WriteLine(L"ECHO x");
  EXPECT_EQ(ReadLine(), ERR_TIMEOUT) << "the reply is gone";
  EXPECT_EQ(taken.str(), L"ECHO x");
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
class LastReferenceTest : public testing::Test {
 protected:
  struct Stage {
    ComPtr<_CKespTCP> tcp = Create<_CKespTCP>(__uuidof(CKespTCP));
    ComPtr<EventRecorder> recorder = EventRecorder::Make(__uuidof(__CKespTCP));
    Stage() {
      SetTarget(tcp.Get());
      Connection(tcp.Get(), __uuidof(__CKespTCP), recorder.Get()).Abandon();
    }
    // Lets go of the object at the event. The raw pointer stays good for the call on its way.
    _CKespTCP* ReleaseAt(const std::wstring& event) {
      recorder->handlers[event] = [this](DISPPARAMS&) {
        released = true;
        tcp.Reset();
      };
      return tcp.Get();
    }
    // An object that is gone has let go of its handlers.
    void ExpectGone() const {
      EXPECT_TRUE(released);
      EXPECT_EQ(recorder->references(), 1u);
    }
    bool released = false;
  };

  Apartment apartment_;
};

TEST_F(LastReferenceTest, ReleasedDuringInitialize) {
  Stage stage;
  VARIANT_BOOL answer = VARIANT_FALSE;
  EXPECT_EQ(stage.ReleaseAt(L"ConnectBegin")->Initialize(&answer), S_OK);
  EXPECT_EQ(answer, VARIANT_TRUE);
  stage.ExpectGone();
}

TEST_F(LastReferenceTest, ReleasedDuringWriteLine) {
  Stage stage;
  EXPECT_TRUE(CallsTrue(stage.tcp, &_CKespTCP::Initialize));
  VARIANT_BOOL answer = VARIANT_FALSE;
  EXPECT_EQ(stage.ReleaseAt(L"SendProgressBegin")->WriteLine(Text(L"*IDN?").get(), &answer), S_OK);
  stage.ExpectGone();
}

TEST_F(LastReferenceTest, ReleasedDuringReadLine) {
  Stage stage;
  EXPECT_TRUE(CallsTrue(stage.tcp, &_CKespTCP::Initialize));
  VARIANT_BOOL answer = VARIANT_FALSE;
  EXPECT_EQ(stage.tcp->WriteLine(Text(L"SPLIT?").get(), &answer), S_OK);
  Text reply;
  EXPECT_EQ(stage.ReleaseAt(L"DataArrivalBegin")->ReadLine(reply.in_out(), &answer), S_OK);
  EXPECT_EQ(reply.str(), L"SPLIT 1.0,2.0,3.0") << "the read goes on to its end";
  stage.ExpectGone();
}

// Here no call of the object is on its way: the event comes from the client's own message loop.
TEST_F(LastReferenceTest, ReleasedWhileMessagesArePumped) {
  Stage stage;
  EXPECT_TRUE(CallsTrue(stage.tcp, &_CKespTCP::Initialize));
  VARIANT_BOOL answer = VARIANT_FALSE;
  EXPECT_EQ(stage.tcp->WriteLine(Text(L"SLOW?").get(), &answer), S_OK);
  stage.ReleaseAt(L"DataArrivalBegin");
  EXPECT_TRUE(PumpUntil([&] { return stage.released; }));
  stage.ExpectGone();
}

TEST_F(LastReferenceTest, FacadeAndTransportReleasedDuringAQuery) {
  auto comm = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  auto tcp = UseInstrument(comm.Get());
  const auto recorder = EventRecorder::Make(__uuidof(__CKespTCP));
  Connection(tcp.Get(), __uuidof(__CKespTCP), recorder.Get()).Abandon();
  recorder->handlers[L"DataArrivalBegin"] = [&](DISPPARAMS&) {
    tcp.Reset();
    comm.Reset();
  };
  Text reply;
  VARIANT_BOOL answer = VARIANT_FALSE;
  _CKespCommObj* const called = comm.Get();
  EXPECT_EQ(called->Query(reply.in_out(), Text(L"*IDN?").get(), nullptr, nullptr, &answer), S_OK);
  EXPECT_EQ(answer, VARIANT_TRUE);
  EXPECT_EQ(reply.str(), L"KESP,TORTURE,SIM00666,1.0");
  EXPECT_EQ(comm, nullptr);
  EXPECT_EQ(recorder->references(), 1u) << "the transport is gone, and so is who held it";
}

// A released object with an open connection leaves nothing behind that could call it.
TEST_F(LastReferenceTest, ReleasedWhileAReplyIsOnItsWay) {
  for (int i = 0; i < 5; ++i) {
    Stage stage;
    EXPECT_TRUE(CallsTrue(stage.tcp, &_CKespTCP::Initialize));
    VARIANT_BOOL answer = VARIANT_FALSE;
    EXPECT_EQ(stage.tcp->WriteLine(Text(L"TRICKLE?").get(), &answer), S_OK);
    stage.tcp.Reset();
    const std::size_t heard = stage.recorder->journal.size();
    PumpUntil([] { return false; }, 100);
    EXPECT_EQ(stage.recorder->journal.size(), heard);
    EXPECT_EQ(stage.recorder->references(), 1u);
  }
}

}  // namespace
}  // namespace kesp::clients
