// Tests of the socket control when a thread other than its own ends it.
#include <gtest/gtest.h>

#include <thread>

#include "tests/network_win/socket_control_fixture_win.h"

namespace kesp {
namespace {

class SocketThreadsTest : public SocketControlFixture {
 protected:
  void EndElsewhere() {
    std::thread([this] { recorder_.reset(); }).join();
  }
};

TEST_F(SocketThreadsTest, EndedElsewhere_WhatIsQueuedReachesNobodyAndTheWindowGoes) {
  for (int round = 0; round < 20; ++round) {
    const LoopbackPeer peer(Sending("ABC"));
    recorder_ = Recorder::Make();
    control().Connect(kLoopback, peer.port());
    EXPECT_TRUE(AwaitQueued(2)) << "connected, and bytes to read";
    EndElsewhere();
    EXPECT_TRUE(WindowClassExists());
    PumpFor(20);
    EXPECT_FALSE(WindowClassExists());
  }
}

TEST_F(SocketThreadsTest, EndedElsewhereWhileResolving_TheWindowGoes) {
  control().Connect(L"localhost", 80);
  EndElsewhere();
  PumpFor(200);
  EXPECT_FALSE(WindowClassExists());
}

// Whether the notification or the end comes first, nothing is told to an object that is going.
TEST_F(SocketThreadsTest, EndedElsewhereWhileItsThreadPumps_TheWindowGoes) {
  for (int round = 0; round < 100; ++round) {
    const LoopbackPeer peer(Sending("ABC"));
    std::shared_ptr<Recorder> held = Recorder::Make();
    const std::weak_ptr<Recorder> watched = held;
    held->control->Connect(kLoopback, peer.port());
    std::thread ending([&held] { held.reset(); });
    EXPECT_TRUE(PumpUntil([&] { return watched.expired() && !WindowClassExists(); }));
    ending.join();
  }
}

TEST_F(SocketThreadsTest, ThreadOfTheWindowHasEnded_ControlIsEndedAllTheSame) {
  const LoopbackPeer peer(Sending("ABC"));
  std::thread([&] { control().Connect(kLoopback, peer.port()); }).join();
  recorder_.reset();
  EXPECT_FALSE(WindowClassExists());
}

}  // namespace
}  // namespace kesp
