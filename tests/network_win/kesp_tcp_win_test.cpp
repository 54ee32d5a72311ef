// Tests of the network transport over the real socket control, clock and message pump.
#include <gtest/gtest.h>

#include <chrono>
#include <future>

#include "network/kesp_tcp.h"
#include "network/socket_control_win.h"
#include "support/environment_win.h"
#include "support/error_numbers.h"
#include "tests/network_win/loopback_peer_win.h"

namespace kesp {
namespace {

class CKespTCPWin : public testing::Test {
 protected:
  void Connect(const LoopbackPeer& peer) {
    tcp_.SetIPAddress(L"127.0.0.1");
    tcp_.SetPort(static_cast<std::int16_t>(peer.port()));
    ASSERT_TRUE(tcp_.Initialize());
  }

  template <typename Call>
  std::int32_t NumberOf(const Call& call) {
    try {
      call();
    } catch (const Failure& failure) {
      return failure.number();
    }
    return 0;
  }

  CKespTCP tcp_{SystemEnvironment(), MakeSocketControl, MakeInstrument};
};

// Answers each command with itself.
void Echo(SOCKET connection) {
  for (;;) {
    const std::string command = ReceiveUntil(connection, '\r');
    if (command.empty() || !SendAll(connection, command)) return;
  }
}

TEST_F(CKespTCPWin, Exchanges_OnOneConnectionAndOnNewOnes_ReturnTheReply) {
  const LoopbackPeer peer(Echo, 3);
  for (int connection = 0; connection < 3; ++connection) {
    Connect(peer);
    for (int i = 0; i < 20; ++i) {
      const std::wstring command = L"C" + std::to_wstring(i);
      std::wstring result;
      EXPECT_TRUE(tcp_.WriteLine(command));
      EXPECT_TRUE(tcp_.ReadLine(result));
      EXPECT_EQ(result, command);
    }
    EXPECT_TRUE(tcp_.Uninitialize());
  }
}

TEST_F(CKespTCPWin, ReplyOf16Megabytes_IsReadWholeInTime) {
  const LoopbackPeer peer([](SOCKET connection) {
    ReceiveUntil(connection, '\r');
    SendAll(connection, std::string(16 * 1024 * 1024, 'x') + "\r");
    ReceiveUntil(connection, '\r');
  });
  Connect(peer);
  tcp_.SetTimeOutmSecs(20000);
  std::wstring result;
  EXPECT_TRUE(tcp_.WriteLine(L"long"));
  EXPECT_TRUE(tcp_.ReadLine(result));
  EXPECT_EQ(result.size(), 16U * 1024 * 1024);
  EXPECT_TRUE(tcp_.Uninitialize());
}

TEST_F(CKespTCPWin, PeerTricklesForEver_TheReadEndsByItsTimeOut) {
  const LoopbackPeer peer([](SOCKET connection) {
    while (SendAll(connection, "x")) Sleep(20);
  });
  Connect(peer);
  tcp_.SetTimeOutmSecs(500);
  std::wstring result;
  const DWORD start = GetTickCount();
  EXPECT_EQ(NumberOf([&] { tcp_.ReadLine(result); }), tcp_error::ERR_TIMEOUT);
  EXPECT_LT(GetTickCount() - start, 2000U);
  EXPECT_TRUE(tcp_.Uninitialize());
}

TEST_F(CKespTCPWin, PeerFloods_TheReadEndsAtTheLimit) {
  const LoopbackPeer peer([](SOCKET connection) {
    const std::string block(1024 * 1024, 'x');
    while (SendAll(connection, block)) continue;
  });
  Connect(peer);
  tcp_.SetTimeOutmSecs(30000);
  std::wstring result;
  EXPECT_EQ(NumberOf([&] { tcp_.ReadLine(result); }), tcp_error::ERR_GET_DATA);
  EXPECT_EQ(NumberOf([&] { tcp_.WriteLine(L"x"); }), tcp_error::ERR_NO_CONNECTION);
  EXPECT_TRUE(tcp_.Uninitialize());
}

// The peer waits until the command counts as written: a connection that closes earlier is one that ReadLine
// refuses.
TEST_F(CKespTCPWin, PeerRepliesAndCloses_TheReplyIsRead) {
  std::promise<void> written;
  const LoopbackPeer peer([&written](SOCKET connection) {
    ReceiveUntil(connection, '\r');
    written.get_future().wait_for(std::chrono::seconds(5));
    SendAll(connection, "done\r");
  });
  Connect(peer);
  std::wstring result;
  EXPECT_TRUE(tcp_.WriteLine(L"x"));
  // Only pumping tells the transport of what arrives, and that is left to ReadLine.
  written.set_value();
  EXPECT_TRUE(tcp_.ReadLine(result));
  EXPECT_EQ(result, L"done");
  EXPECT_TRUE(tcp_.Uninitialize());
}

TEST_F(CKespTCPWin, Refused_FailsAfterOneTimeOut) {
  tcp_.SetIPAddress(L"127.0.0.1");
  tcp_.SetPort(static_cast<std::int16_t>(ClosedPort()));
  tcp_.SetTimeOutmSecs(500);
  const DWORD start = GetTickCount();
  EXPECT_EQ(NumberOf([&] { tcp_.Initialize(); }), tcp_error::ERR_TIMEOUT);
  EXPECT_LT(GetTickCount() - start, 2000U);
  EXPECT_EQ(tcp_.State(), EKespTCPState::sckError);
}

TEST_F(CKespTCPWin, BinaryReplyWithoutEos_EndsByTheGap) {
  const LoopbackPeer peer([](SOCKET connection) {
    ReceiveUntil(connection, '\r');
    SendAll(connection, std::string("\0\xFF", 2));
    Sleep(20);
    SendAll(connection, "\x80");
    ReceiveUntil(connection, '\r');
  });
  Connect(peer);
  tcp_.SetTerminateOnEOS(false);
  BinaryValue value;
  EXPECT_TRUE(tcp_.WriteLine(L"x"));
  EXPECT_TRUE(tcp_.ReadLineBinary(value, 300));
  EXPECT_EQ(std::get<Bytes>(value), (Bytes{0, 0xFF, 0x80}));
  EXPECT_TRUE(tcp_.Uninitialize());
}

}  // namespace
}  // namespace kesp
