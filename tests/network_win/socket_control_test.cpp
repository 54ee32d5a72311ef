// Tests of the socket control on Winsock against peers on the loopback interface.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>

#include "network/socket_control_win.h"
#include "support/failure.h"
#include "tests/network_win/socket_control_fixture_win.h"

namespace kesp {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SocketControlTest : public SocketControlFixture {};

template <typename Call>
std::int32_t NumberOf(const Call& call) {
  try {
    call();
  } catch (const Failure& failure) {
    return failure.number();
  }
  return 0;
}

TEST_F(SocketControlTest, New_IsClosedAndTakesNothingOfTheSystem) {
  EXPECT_EQ(control().State(), EKespTCPState::sckClosed);
  EXPECT_EQ(control().Protocol(), EKespProtocol::sckTCPProtocol);
  EXPECT_EQ(control().RemoteHost(), L"");
  EXPECT_EQ(control().RemotePort(), 0);
  EXPECT_EQ(control().PeekData(), "");
  EXPECT_EQ(control().GetData(), "");
  EXPECT_FALSE(WindowClassExists());
  control().Close();
  EXPECT_FALSE(WindowClassExists());
}

TEST_F(SocketControlTest, Connect_Listening_IsToldDuringPumpingOnly) {
  const LoopbackPeer peer(Sending());
  control().Connect(kLoopback, peer.port());
  EXPECT_EQ(control().State(), EKespTCPState::sckConnecting);
  EXPECT_EQ(control().RemoteHost(), kLoopback);
  EXPECT_EQ(control().RemotePort(), peer.port());
  EXPECT_THAT(recorder_->heard, IsEmpty());
  ASSERT_TRUE(PumpUntil([this] { return !recorder_->heard.empty(); }));
  EXPECT_THAT(recorder_->heard, ElementsAre("Connect()"));
  EXPECT_EQ(control().State(), EKespTCPState::sckConnected);
  control().Close();
  EXPECT_EQ(control().State(), EKespTCPState::sckClosed);
}

TEST_F(SocketControlTest, Connect_NobodyListens_ReportsRefused) {
  control().Connect(kLoopback, ClosedPort());
  ASSERT_TRUE(PumpUntil([this] { return !recorder_->heard.empty(); }));
  EXPECT_THAT(recorder_->heard, ElementsAre("Error(10061)"));
  EXPECT_EQ(control().State(), EKespTCPState::sckError);
}

TEST_F(SocketControlTest, Connect_Name_IsResolvedInTheBackground) {
  const LoopbackPeer peer(Sending());
  control().Connect(L"localhost", peer.port());
  EXPECT_EQ(control().State(), EKespTCPState::sckResolvingHost);
  ASSERT_TRUE(PumpUntil([this] { return !recorder_->heard.empty(); }));
  EXPECT_THAT(recorder_->heard, ElementsAre("Connect()"));
  EXPECT_EQ(control().RemoteHost(), L"localhost");
  control().Close();
}

// A label of 70 characters is none, so that no name server is asked.
TEST_F(SocketControlTest, Connect_NameOfNobody_ReportsHostNotFound) {
  control().Connect(std::wstring(70, L'x'), 80);
  ASSERT_TRUE(PumpUntil([this] { return !recorder_->heard.empty(); }));
  ASSERT_EQ(recorder_->heard.size(), 1U);
  EXPECT_THAT(recorder_->heard[0],
              testing::AnyOf("Error(11001)", "Error(11002)", "Error(11003)", "Error(11004)"));
  EXPECT_EQ(control().State(), EKespTCPState::sckError);
}

TEST_F(SocketControlTest, Connect_BadArguments_AreRefused) {
  EXPECT_EQ(NumberOf([&] { control().Connect(L"", 80); }), 40014);
  for (const std::int32_t port : {0, -1, 65536}) {
    EXPECT_EQ(NumberOf([&] { control().Connect(kLoopback, port); }), 40014) << port;
  }
  EXPECT_EQ(NumberOf([&] { control().Connect(L"\u4E2D", 80); }), 11001);
  EXPECT_EQ(NumberOf([&] { control().SetProtocol(static_cast<EKespProtocol>(2)); }), 40014);
  EXPECT_EQ(control().State(), EKespTCPState::sckClosed);
}

// No stream leads to the broadcast address, which the system knows by itself.
TEST_F(SocketControlTest, Connect_FailsAtOnce_TheNextOneWorks) {
  EXPECT_NE(NumberOf([&] { control().Connect(L"255.255.255.255", 80); }), 0);
  EXPECT_EQ(control().State(), EKespTCPState::sckClosed);
  const LoopbackPeer peer(Sending());
  Connect(peer);
  control().Close();
}

TEST_F(SocketControlTest, WrongState_IsRefused) {
  EXPECT_EQ(NumberOf([&] { control().SendData("x"); }), 40006);
  const LoopbackPeer peer(Sending());
  control().Connect(kLoopback, peer.port());
  EXPECT_EQ(NumberOf([&] { control().SendData("x"); }), 40006);
  EXPECT_EQ(NumberOf([&] { control().Connect(kLoopback, peer.port()); }), 40006);
  EXPECT_EQ(NumberOf([&] { control().SetProtocol(EKespProtocol::sckUDPProtocol); }), 40006);
  control().Close();
}

TEST_F(SocketControlTest, Close_WhileConnectingOrResolving_NothingIsToldAfterwards) {
  const LoopbackPeer peer(Sending(), 2);
  for (const wchar_t* host : {kLoopback, L"localhost"}) {
    control().Connect(host, peer.port());
    control().Close();
    EXPECT_EQ(control().State(), EKespTCPState::sckClosed);
    PumpFor(200);
    EXPECT_THAT(recorder_->heard, IsEmpty());
  }
}

TEST_F(SocketControlTest, Close_ThenConnect_OnlyTheNewConnectionIsToldOf) {
  const LoopbackPeer peer(Sending("x"), 4);
  control().Connect(kLoopback, peer.port());
  EXPECT_TRUE(AwaitQueued(2)) << "connected, and bytes to read";
  control().Close();
  control().Connect(L"localhost", peer.port());
  EXPECT_TRUE(AwaitQueued(1)) << "its address";
  control().Close();
  control().Connect(kLoopback, ClosedPort());
  EXPECT_TRUE(AwaitQueued(1)) << "refused";
  control().Close();
  control().Connect(kLoopback, peer.port());
  ASSERT_TRUE(PumpUntil([this] { return recorder_->heard.size() >= 2; }));
  PumpFor(100);
  EXPECT_THAT(recorder_->heard, ElementsAre("Connect()", "DataArrival(1)"));
  control().Close();
}

TEST_F(SocketControlTest, Destroyed_WhileResolving_LeavesNothing) {
  control().Connect(L"localhost", 80);
  recorder_.reset();
  EXPECT_FALSE(WindowClassExists());
  PumpFor(200);
}

TEST_F(SocketControlTest, SendData_ArrivesAndIsReportedTogetherDuringPumping) {
  std::string received;
  {
    const LoopbackPeer peer([&received](SOCKET connection) {
      received = ReceiveUntil(connection, '\r');
      ReceiveUntil(connection, '\x04');
    });
    Connect(peer);
    control().SendData("*IDN");
    control().SendData("?\r");
    EXPECT_THAT(recorder_->heard, IsEmpty());
    ASSERT_TRUE(PumpUntil([this] { return recorder_->heard.size() >= 2; }));
    PumpFor(100);
    EXPECT_THAT(recorder_->heard, ElementsAre("SendProgress(6,0)", "SendComplete()"));
    control().Close();
  }
  EXPECT_EQ(received, "*IDN?\r");
}

TEST_F(SocketControlTest, SendData_MoreThanTheSystemTakes_FollowsAsItDoes) {
  std::string bytes(8 * 1024 * 1024, 'x');
  for (std::size_t i = 0; i < bytes.size(); i += 1000) bytes[i] = static_cast<char>('0' + i / 1000 % 64);
  std::atomic<bool> go = false;
  std::string received;
  {
    const LoopbackPeer peer([&](SOCKET connection) {
      while (!go) Sleep(1);
      received = ReceiveUntil(connection, '\r');
    });
    Connect(peer);
    control().SendData(bytes);
    control().SendData("\r");
    Pump();
    EXPECT_FALSE(recorder_->Heard("SendComplete()"));
    go = true;
    ASSERT_TRUE(PumpUntil([this] { return recorder_->Heard("SendComplete()"); }));
    EXPECT_EQ(recorder_->sent, static_cast<std::int64_t>(bytes.size() + 1));
    PumpUntil([this] { return recorder_->Heard("Close()"); });
  }
  EXPECT_EQ(received.size(), bytes.size() + 1);
  EXPECT_TRUE(received == bytes + "\r");
}

TEST_F(SocketControlTest, SendProgressHandlerThrows_DeliverDueGoesOn) {
  const LoopbackPeer peer(Sending());
  Connect(peer);
  recorder_->handlers["SendProgress"] = [] { throw std::runtime_error("from a handler"); };
  control().SendData("x");
  EXPECT_NO_THROW(control().DeliverDue());
  EXPECT_THAT(recorder_->heard, ElementsAre("SendProgress(1,0)"));
  control().DeliverDue();  // delivered once
  EXPECT_THAT(recorder_->heard, ElementsAre("SendProgress(1,0)"));
  control().Close();
}

TEST_F(SocketControlTest, SendProgressHandlerCloses_NothingMoreIsTold) {
  const LoopbackPeer peer(Sending());
  Connect(peer);
  recorder_->handlers["SendProgress"] = [this] { control().Close(); };
  control().SendData("x");
  PumpFor(100);
  EXPECT_THAT(recorder_->heard, ElementsAre("SendProgress(1,0)"));
}

TEST_F(SocketControlTest, Receive_PiecesMergeUntilTheyAreTaken) {
  std::atomic<int> step = 0;
  const LoopbackPeer peer([&step](SOCKET connection) {
    for (int sent = 0; const char* piece : {"AB", "C\r", "D"}) {
      SendAll(connection, piece);
      ++sent;
      for (int waited = 0; step < sent && waited < 5000; ++waited) Sleep(1);
    }
    ReceiveUntil(connection, '\x04');
  });
  Connect(peer);
  ASSERT_TRUE(PumpUntil([this] { return recorder_->Heard("DataArrival(2)"); }));
  EXPECT_EQ(control().PeekData(), "AB");
  ++step;
  ASSERT_TRUE(PumpUntil([this] { return recorder_->Heard("DataArrival(4)"); }));
  EXPECT_EQ(control().PeekData(), "ABC\r");
  EXPECT_EQ(control().GetData(), "ABC\r");
  EXPECT_EQ(control().PeekData(), "");
  ++step;
  ASSERT_TRUE(PumpUntil([this] { return recorder_->Heard("DataArrival(1)"); }));
  EXPECT_EQ(control().GetData(), "D");
  ++step;
  control().Close();
}

TEST_F(SocketControlTest, Close_DropsWhatWasReceived) {
  const LoopbackPeer peer(Sending("ABC"));
  Connect(peer);
  ASSERT_TRUE(PumpUntil([this] { return recorder_->Heard("DataArrival(3)"); }));
  control().Close();
  EXPECT_EQ(control().PeekData(), "");
  EXPECT_EQ(control().GetData(), "");
}

TEST_F(SocketControlTest, PeerCloses_AfterItsDataWasAnnounced) {
  const std::string bytes(300000, 'x');
  const LoopbackPeer peer([&bytes](SOCKET connection) { SendAll(connection, bytes); });
  Connect(peer);
  ASSERT_TRUE(PumpUntil([this] { return recorder_->Heard("Close()"); }));
  EXPECT_EQ(recorder_->heard.back(), "Close()");
  EXPECT_EQ(recorder_->heard.at(recorder_->heard.size() - 2), "DataArrival(300000)");
  EXPECT_EQ(control().State(), EKespTCPState::sckClosing);
  EXPECT_EQ(NumberOf([&] { control().SendData("x"); }), 40006);
  EXPECT_EQ(control().GetData(), bytes);
  control().Close();
  EXPECT_EQ(control().State(), EKespTCPState::sckClosed);
}

// All of it is there when the first pump runs.
TEST_F(SocketControlTest, PeerCloses_BeforeAnythingWasPumped_DataComesFirst) {
  {
    const LoopbackPeer peer([](SOCKET connection) { SendAll(connection, "ABC"); });
    control().Connect(kLoopback, peer.port());
    // Some systems tell of the end only when the bytes have been taken.
    EXPECT_TRUE(AwaitQueued(2)) << "connected, and bytes to read";
  }
  ASSERT_TRUE(PumpUntil([this] { return recorder_->Heard("Close()"); }));
  EXPECT_THAT(recorder_->heard, ElementsAre("Connect()", "DataArrival(3)", "Close()"));
  EXPECT_EQ(control().GetData(), "ABC");
}

// Wine 8 tells of a reset as of an orderly close (FD_CLOSE without an error, and recv gives 0); Windows says
// 10054.
TEST_F(SocketControlTest, PeerResets_EndsTheConnectionOnceAndKeepsWhatWasAnnounced) {
  const LoopbackPeer peer([](SOCKET connection) {
    SendAll(connection, "A");
    ReceiveUntil(connection, '\r');
    ResetOnClose(connection);
  });
  Connect(peer);
  ASSERT_TRUE(PumpUntil([this] { return recorder_->Heard("DataArrival(1)"); }));
  control().SendData("x\r");
  ASSERT_TRUE(PumpUntil([this] { return control().State() != EKespTCPState::sckConnected; }));
  PumpFor(100);
  if (control().State() == EKespTCPState::sckClosing) {
    EXPECT_THAT(recorder_->heard,
                ElementsAre("DataArrival(1)", "SendProgress(2,0)", "SendComplete()", "Close()"));
  } else {
    EXPECT_EQ(control().State(), EKespTCPState::sckError);
    EXPECT_THAT(recorder_->heard, ElementsAre("DataArrival(1)", "SendProgress(2,0)", "SendComplete()",
                                              testing::AnyOf("Error(10054)", "Error(10053)")));
  }
  EXPECT_EQ(control().GetData(), "A");
  EXPECT_EQ(NumberOf([&] { control().SendData("y"); }), 40006);
}

TEST_F(SocketControlTest, Flood_EndsAtTheLimitWithAnErrorAndNoData) {
  const LoopbackPeer peer([](SOCKET connection) {
    const std::string block(1024 * 1024, 'x');
    for (std::size_t sent = 0; sent <= kReceiveLimit + block.size(); sent += block.size()) {
      if (!SendAll(connection, block)) return;
    }
  });
  Connect(peer);
  ASSERT_TRUE(PumpUntil([this] { return control().State() != EKespTCPState::sckConnected; }));
  EXPECT_EQ(control().State(), EKespTCPState::sckError);
  EXPECT_EQ(recorder_->heard.back(), "Error(10055)");
  EXPECT_EQ(control().PeekData(), "");
  EXPECT_EQ(recorder_->heard.at(recorder_->heard.size() - 2).substr(0, 12), "DataArrival(");
  control().Close();
  EXPECT_EQ(control().State(), EKespTCPState::sckClosed);
}

TEST_F(SocketControlTest, HandlerDropsTheLastReference_ControlGoesInsideItsOwnNotification) {
  for (const std::string event :
       {"Connect", "DataArrival", "SendProgress", "SendComplete", "Close", "Error"}) {
    const LoopbackPeer peer([](SOCKET connection) {
      SendAll(connection, "ABC");
      ReceiveUntil(connection, '\r');
    });
    recorder_ = Recorder::Make();
    const std::weak_ptr<Recorder> watched = recorder_;
    recorder_->handlers["DataArrival"] = [this] { control().SendData("x\r"); };
    recorder_->handlers[event] = [this] { recorder_.reset(); };
    control().Connect(kLoopback, event == "Error" ? ClosedPort() : peer.port());
    EXPECT_TRUE(PumpUntil([&watched] { return watched.expired(); })) << event;
    EXPECT_FALSE(WindowClassExists()) << event;
    PumpFor(20);
  }
}

TEST_F(SocketControlTest, HandlerConnectsAnew_TheNewConnectionIsGood) {
  const LoopbackPeer peer(Sending("ABC"), 2);
  int arrivals = 0;
  recorder_->handlers["DataArrival"] = [&] {
    if (++arrivals > 1) return;
    control().Close();
    control().Connect(kLoopback, peer.port());
  };
  control().Connect(kLoopback, peer.port());
  ASSERT_TRUE(PumpUntil([&] { return arrivals == 2; }));
  EXPECT_THAT(recorder_->heard, ElementsAre("Connect()", "DataArrival(3)", "Connect()", "DataArrival(3)"));
  EXPECT_EQ(control().GetData(), "ABC");
  control().Close();
}

TEST_F(SocketControlTest, HandlerPumps_LaterPiecesArriveInside) {
  const LoopbackPeer peer([](SOCKET connection) {
    SendAll(connection, "A");
    ReceiveUntil(connection, '\r');
    SendAll(connection, "B");
    ReceiveUntil(connection, '\x04');
  });
  recorder_->handlers["DataArrival"] = [this] {
    recorder_->handlers.clear();
    control().SendData("\r");
    EXPECT_TRUE(PumpUntil([this] { return recorder_->Heard("DataArrival(2)"); }));
  };
  Connect(peer);
  ASSERT_TRUE(PumpUntil([this] { return recorder_->Heard("DataArrival(2)"); }));
  EXPECT_EQ(control().GetData(), "AB");
  control().Close();
}

TEST_F(SocketControlTest, HandlerThrows_TheWindowGoesOn) {
  const LoopbackPeer peer(Sending("A"));
  recorder_->handlers["Connect"] = [] { throw std::runtime_error("from a handler"); };
  control().Connect(kLoopback, peer.port());
  ASSERT_TRUE(PumpUntil([this] { return recorder_->Heard("DataArrival(1)"); }));
  control().Close();
}

TEST_F(SocketControlTest, WindowClass_LivesAsLongAsTheLastConnectedControl) {
  const LoopbackPeer peer(Sending(), 2);
  auto other = Recorder::Make();
  Connect(peer);
  control().Close();
  EXPECT_TRUE(WindowClassExists());
  other->control->Connect(kLoopback, peer.port());
  recorder_.reset();
  EXPECT_TRUE(WindowClassExists());
  other.reset();
  EXPECT_FALSE(WindowClassExists());
}

}  // namespace
}  // namespace kesp
