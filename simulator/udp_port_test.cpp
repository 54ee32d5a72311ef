// The UDP port with real datagrams on the loopback interface.
#include "simulator/udp_port.h"

#include <gtest/gtest.h>

#include <system_error>

#include "simulator/carrier_fake.h"
#include "simulator/loopback_datagrams.h"

namespace kesp::simulator {
namespace {

using std::chrono::milliseconds;

class UdpPortTest : public testing::Test {
 protected:
  // Runs until the coroutine has ended, which must happen in time.
  template <typename Result>
  Result Run(asio::awaitable<Result> coroutine) {
    std::optional<Result> result;
    asio::co_spawn(io_, std::move(coroutine), [&](const std::exception_ptr& failure, Result value) {
      if (!failure) result = std::move(value);
    });
    io_.restart();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!result && io_.run_one_until(deadline) != 0) {
    }
    return result.value();
  }

  std::error_code SendFrom(const std::string& bytes, std::optional<std::string> from) {
    const asio::ip::udp::endpoint to(asio::ip::address_v4::loopback(), client_.port());
    return Run(port_.Send(bytes, to, from ? std::optional(asio::ip::make_address_v4(*from)) : std::nullopt));
  }

  std::uint16_t number() const { return port_.endpoint().port(); }

  asio::io_context io_{1};
  UdpPort port_{io_, 0};
  LoopbackDatagrams client_;
};

TEST_F(UdpPortTest, PortZero_IsAFreeOneOnAllAddresses) {
  EXPECT_NE(number(), 0);
  EXPECT_TRUE(port_.endpoint().address().is_unspecified());
  EXPECT_NE(UdpPort(io_, 0).endpoint().port(), number());
}

TEST_F(UdpPortTest, Receive_GivesEachDatagramAndItsSender) {
  client_.Send("first", number());
  client_.Send("", number());
  client_.Send(std::string(65'507, 'x'), number());
  for (const std::string& bytes : {std::string("first"), std::string(), std::string(65'507, 'x')}) {
    const ReceivedDatagram received = Run(port_.Receive());
    EXPECT_FALSE(received.error);
    EXPECT_EQ(received.bytes == bytes, true) << received.bytes.size();
    EXPECT_EQ(received.from.port(), client_.port());
  }
}

TEST_F(UdpPortTest, Send_LeavesFromItsPortAndTheAddressAskedFor) {
  const std::pair<std::optional<std::string>, std::string> cases[] = {
      {std::nullopt, "127.0.0.1"}, {"127.0.1.7", "127.0.1.7"}, {"127.200.0.9", "127.200.0.9"}};
  for (const auto& [from, address] : cases) {
    EXPECT_FALSE(SendFrom("here", from));
    const auto heard = client_.Receive();
    ASSERT_TRUE(heard);
    EXPECT_EQ(heard->bytes, "here");
    EXPECT_EQ(heard->address, address);
    EXPECT_EQ(heard->port, number());
  }
}

TEST_F(UdpPortTest, EmptyAndLongestDatagram_AreSent) {
  for (const std::size_t length : {0U, 65'507U}) {
    EXPECT_FALSE(SendFrom(std::string(length, '\xF7'), "127.0.1.1"));
    const auto heard = client_.Receive();
    ASSERT_TRUE(heard);
    EXPECT_EQ(heard->bytes.size(), length);
  }
}

TEST_F(UdpPortTest, WhatTheSystemRefuses_IsReportedAndNotTheEnd) {
  EXPECT_TRUE(SendFrom("from an address of somebody else", "198.51.100.1"));
  EXPECT_EQ(SendFrom(std::string(65'508, 'x'), std::nullopt), std::errc::message_size);
  EXPECT_FALSE(SendFrom("here", "127.0.1.1"));
  EXPECT_TRUE(client_.Receive());
}

TEST_F(UdpPortTest, GivenPort_IsSharedWithThoseWhoAllowIt) {
  // A port of the system's choice is not shared, so this is a port that somebody has for himself.
  EXPECT_THROW(UdpPort(io_, number()), std::system_error);
  std::uint16_t free = 0;
  { free = UdpPort(io_, 0).endpoint().port(); }
  const UdpPort first(io_, free);
  const UdpPort second(io_, free);
  EXPECT_EQ(second.endpoint().port(), free);
}

TEST_F(UdpPortTest, Pause_TakesItsTime) {
  const auto start = std::chrono::steady_clock::now();
  Run([](UdpPort& port) -> asio::awaitable<int> {
    co_await port.Pause(milliseconds(0));
    co_await port.Pause(milliseconds(30));
    co_return 0;
  }(port_));
  EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(30));
}

}  // namespace
}  // namespace kesp::simulator
