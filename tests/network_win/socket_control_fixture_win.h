// The stage of the socket control's tests: a control whose notifications are written down, and pumping.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

#include "tests/network_win/loopback_peer_win.h"
#include "tests/network_win/socket_listener_recorder_win.h"

namespace kesp {

inline constexpr wchar_t kLoopback[] = L"127.0.0.1";

class SocketControlFixture : public testing::Test {
 protected:
  void TearDown() override {
    recorder_.reset();
    EXPECT_FALSE(WindowClassExists()) << "the window class outlives the last control";
  }

  SocketControl& control() { return *recorder_->control; }

  void Connect(const LoopbackPeer& peer) {
    control().Connect(kLoopback, peer.port());
    ASSERT_TRUE(PumpUntil([this] { return !recorder_->heard.empty(); }));
    ASSERT_EQ(recorder_->heard.front(), "Connect()");
    recorder_->heard.erase(recorder_->heard.begin());
  }

  // One pumping, as the transport does it.
  void Pump() {
    if (const std::shared_ptr<Recorder> alive = recorder_) alive->control->DeliverDue();
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) DispatchMessageW(&message);
  }

  // Pumps until the condition holds; false when it does not within 10 seconds.
  bool PumpUntil(const std::function<bool()>& condition) {
    const DWORD start = GetTickCount();
    while (!condition()) {
      if (GetTickCount() - start > 10000) return false;
      MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
      Pump();
    }
    return true;
  }

  // Waits until that many messages are in the queue and leaves them there; false when they do not come within
  // 10 seconds.
  static bool AwaitQueued(std::size_t count) {
    std::vector<MSG> queued;
    MSG message{};
    for (const DWORD start = GetTickCount(); queued.size() < count && GetTickCount() - start < 10000;) {
      if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
        queued.push_back(message);
      } else {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
      }
    }
    for (const MSG& each : queued) PostMessageW(each.hwnd, each.message, each.wParam, each.lParam);
    return queued.size() == count;
  }

  // Pumps for that long, to see that nothing more comes.
  void PumpFor(DWORD milliseconds) {
    const DWORD start = GetTickCount();
    PumpUntil([&] { return GetTickCount() - start >= milliseconds; });
  }

  std::shared_ptr<Recorder> recorder_ = Recorder::Make();
};

}  // namespace kesp
