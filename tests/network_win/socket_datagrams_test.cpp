// Tests of the socket control's datagrams on Winsock, against peers on the loopback interface.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "tests/network_win/socket_control_fixture_win.h"

namespace kesp {
namespace {

class SocketDatagramsTest : public SocketControlFixture {};

TEST_F(SocketDatagramsTest, Udp_DatagramsAreSentAndReadWhole) {
  const WinsockLibrary library;
  int port = 0;
  const SOCKET peer = BindToLoopback(SOCK_DGRAM, port);
  control().SetProtocol(EKespProtocol::sckUDPProtocol);
  control().Connect(kLoopback, port);
  EXPECT_EQ(control().State(), EKespTCPState::sckOpen);
  control().SendData(std::string_view("\0\x01\0\xF6", 4));
  ASSERT_TRUE(WaitReadable(peer, 5000));
  char received[16];
  sockaddr_in sender{};
  int sender_size = sizeof sender;
  ASSERT_EQ(recvfrom(peer, received, sizeof received, 0, reinterpret_cast<sockaddr*>(&sender), &sender_size),
            4);
  EXPECT_EQ(std::string(received, 4), std::string("\0\x01\0\xF6", 4));
  for (const char* reply : {"first", "2nd"}) {
    sendto(peer, reply, static_cast<int>(strlen(reply)), 0, reinterpret_cast<sockaddr*>(&sender),
           sender_size);
  }
  ASSERT_TRUE(PumpUntil([this] { return recorder_->heard.size() == 4; }));
  EXPECT_THAT(recorder_->heard, testing::UnorderedElementsAre("SendProgress(4,0)", "SendComplete()",
                                                              "DataArrival(5)", "DataArrival(5)"));
  ASSERT_TRUE(control().Sender());
  EXPECT_EQ(control().Sender()->AddressText(), L"127.0.0.1");
  EXPECT_EQ(control().Sender()->port, port);
  EXPECT_EQ(control().GetData(), "first");
  EXPECT_EQ(control().PeekData(), "2nd");
  EXPECT_EQ(control().GetData(), "2nd");
  EXPECT_EQ(control().GetData(), "");
  EXPECT_FALSE(control().Sender());
  control().Close();
  closesocket(peer);
}

TEST_F(SocketDatagramsTest, Udp_EachDatagramHasItsOwnSender) {
  const WinsockLibrary library;
  int ports[2] = {};
  const SOCKET peers[2] = {BindToLoopback(SOCK_DGRAM, ports[0]), BindToLoopback(SOCK_DGRAM, ports[1])};
  control().SetProtocol(EKespProtocol::sckUDPProtocol);
  control().Connect(kLoopback, ports[0]);
  control().SendData("hello");
  ASSERT_TRUE(WaitReadable(peers[0], 5000));
  char received[16];
  sockaddr_in client{};
  int client_size = sizeof client;
  ASSERT_EQ(
      recvfrom(peers[0], received, sizeof received, 0, reinterpret_cast<sockaddr*>(&client), &client_size),
      5);
  // The smallest and the largest that there are.
  const std::string datagrams[2] = {"", std::string(65506, 'x') + '\xF7'};
  for (int i : {0, 1}) {
    EXPECT_EQ(sendto(peers[i], datagrams[i].data(), static_cast<int>(datagrams[i].size()), 0,
                     reinterpret_cast<sockaddr*>(&client), client_size),
              static_cast<int>(datagrams[i].size()));
    const std::string arrival = "DataArrival(" + std::to_string(datagrams[i].size()) + ")";
    ASSERT_TRUE(PumpUntil([&] { return recorder_->Heard(arrival); }));
    ASSERT_TRUE(control().Sender());
    EXPECT_EQ(control().Sender()->port, ports[i]);
    EXPECT_EQ(control().GetData(), datagrams[i]);
  }
  control().Close();
  for (const SOCKET peer : peers) closesocket(peer);
}

TEST_F(SocketDatagramsTest, Udp_NobodyListens_ThePortStaysOpen) {
  control().SetProtocol(EKespProtocol::sckUDPProtocol);
  control().Connect(L"localhost", ClosedPort());
  ASSERT_TRUE(PumpUntil([this] { return control().State() == EKespTCPState::sckOpen; }));
  control().SendData("x");
  PumpFor(200);
  control().SendData("y");
  PumpFor(100);
  EXPECT_EQ(control().State(), EKespTCPState::sckOpen);
  EXPECT_FALSE(recorder_->Heard("Close()"));
}

}  // namespace
}  // namespace kesp
