// Tests of the socket control when a thread other than its own ends it.
#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

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

// The buffers of look-ups that are given up go to those of other threads, which must get the right address
// all the same.
TEST_F(SocketThreadsTest, LookUpsGivenUpOnManyThreads_LaterOnesFindTheHost) {
  const LoopbackPeer peer(Sending("ABC"));
  std::vector<std::thread> threads;
  for (int number = 0; number < 4; ++number) {
    threads.emplace_back([&peer] {
      const std::shared_ptr<Recorder> own = Recorder::Make();
      for (int round = 0; round < 20; ++round) {
        own->control->Connect(L"localhost", peer.port());
        EXPECT_EQ(own->control->State(), EKespTCPState::sckResolvingHost);
        own->control->Close();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  control().Connect(L"localhost", peer.port());
  EXPECT_TRUE(PumpUntil([this] { return recorder_->Heard("Connect()"); }));
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
