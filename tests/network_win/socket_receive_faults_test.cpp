// Tests of the socket control when receiving fails, in the place of the system's receive call.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <utility>

#include "tests/network_win/socket_control_fixture_win.h"

// Where the linker keeps the address of the system's routine, which the control calls through it.
#ifdef _WIN64
extern "C" decltype(&recv) receive_slot __asm__("__imp_recv");
#else
extern "C" decltype(&recv) receive_slot __asm__("__imp__recv@16");
#endif

namespace kesp {
namespace {

using testing::ElementsAre;

// What one receive call brings: bytes, or that error when there are none.
struct Received {
  std::string bytes{};
  int error = 0;
};

std::deque<Received> script;

int WINAPI ReceiveByScript(SOCKET /*socket*/, char* buffer, int /*size*/, int /*flags*/) {
  if (script.empty()) return 0;
  const Received next = std::exchange(script.front(), {});
  script.pop_front();
  if (next.error != 0) {
    WSASetLastError(next.error);
    return SOCKET_ERROR;
  }
  next.bytes.copy(buffer, next.bytes.size());
  return static_cast<int>(next.bytes.size());
}

class SocketReceiveFaultsTest : public SocketControlFixture {
 protected:
  void SetUp() override { SetReceive(ReceiveByScript); }
  void TearDown() override {
    SetReceive(system_);
    script.clear();
    SocketControlFixture::TearDown();
  }

  static void SetReceive(decltype(&recv) routine) {
    DWORD before = 0;
    ASSERT_TRUE(VirtualProtect(&receive_slot, sizeof receive_slot, PAGE_READWRITE, &before));
    receive_slot = routine;
    VirtualProtect(&receive_slot, sizeof receive_slot, before, &before);
  }

  // A connection that its other side closes at once.
  void ConnectAndLetClose() {
    const LoopbackPeer peer([](SOCKET) {});
    Connect(peer);
    ASSERT_TRUE(PumpUntil([this] { return control().State() != EKespTCPState::sckConnected; }));
  }

 private:
  decltype(&recv) system_ = receive_slot;
};

TEST_F(SocketReceiveFaultsTest, PeerClosesAndThenResets_WhatCameBeforeIsAnnounced) {
  script = {{.bytes = "AB"}, {.bytes = "C\r"}, {.error = WSAECONNRESET}};
  ConnectAndLetClose();
  EXPECT_THAT(recorder_->heard, ElementsAre("DataArrival(4)", "Error(10054)"));
  EXPECT_EQ(control().State(), EKespTCPState::sckError);
  EXPECT_EQ(control().GetData(), "ABC\r");
}

TEST_F(SocketReceiveFaultsTest, HandlerOfThatArrivalCloses_TheResetIsNotTold) {
  script = {{.bytes = "A"}, {.error = WSAECONNRESET}};
  recorder_->handlers["DataArrival"] = [this] { control().Close(); };
  ConnectAndLetClose();
  EXPECT_THAT(recorder_->heard, ElementsAre("DataArrival(1)"));
  EXPECT_EQ(control().State(), EKespTCPState::sckClosed);
}

}  // namespace
}  // namespace kesp
