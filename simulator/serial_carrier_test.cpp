// The carrier over a real pseudo-terminal.
#include "simulator/serial_carrier.h"

#include <gtest/gtest.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <asio/io_context.hpp>
#include <filesystem>
#include <future>
#include <memory>
#include <system_error>

#include "simulator/carrier_fake.h"
#include "simulator/serial_client.h"

namespace kesp::simulator {
namespace {

using std::chrono::milliseconds;

class SerialCarrierTest : public testing::Test {
 protected:
  // Runs one call of the carrier to its end and returns what it gives.
  template <typename Result>
  Result Done(asio::awaitable<Result> call) {
    std::optional<Result> result;
    std::exception_ptr failure;
    asio::co_spawn(io_, std::move(call), [&](std::exception_ptr thrown, Result given) {
      failure = std::move(thrown);
      result = std::move(given);
    });
    io_.restart();
    io_.run_for(std::chrono::seconds(20));
    if (failure) std::rethrow_exception(failure);
    return result.value();
  }

  asio::awaitable<bool> SendAll(std::string_view bytes) {
    co_await carrier_.Send(bytes);
    co_return true;
  }

  const std::string link_ = testing::TempDir() + "kesp_serial_carrier_" + std::to_string(::getpid());
  asio::io_context io_{1};
  SerialCarrier carrier_{io_.get_executor(), link_};
  SerialClient client_{link_};
};

TEST_F(SerialCarrierTest, Opening_NamesLinkAndDevice) {
  EXPECT_EQ(carrier_.Opening(),
            "plugged in as " + link_ + " (" + std::filesystem::read_symlink(link_).string() + ")");
}

TEST_F(SerialCarrierTest, Receive_ReturnsWhatIsThere) {
  client_.Send("*IDN?\r");
  const Arrival arrival = Done(carrier_.Receive(kForever));
  EXPECT_EQ(arrival.what, Arrived::kBytes);
  EXPECT_EQ(arrival.bytes, "*IDN?\r");
}

TEST_F(SerialCarrierTest, Receive_WithoutBytesEndsInTimeAndTheNextOneHearsAgain) {
  EXPECT_EQ(Done(carrier_.Receive(milliseconds(1))).what, Arrived::kNothing);
  client_.Send("x");
  EXPECT_EQ(Done(carrier_.Receive(milliseconds(10'000))).bytes, "x");
}

TEST_F(SerialCarrierTest, Send_GoesOnAsFastAsTheClientReads) {
  std::string bytes(std::size_t{1024} * 1024, 'x');
  bytes.back() = '\r';
  std::future<std::string> read = std::async(std::launch::async, [this] { return client_.ReadTo("\r"); });
  EXPECT_TRUE(Done(SendAll(bytes)));
  EXPECT_EQ(read.get(), bytes);
}

TEST_F(SerialCarrierTest, SendEndlessly_EndsInTimeWhenNobodyReads) {
  const std::size_t taken = Done(carrier_.SendEndlessly("0123456789", milliseconds(50)));
  EXPECT_GT(taken, 1000U);
  EXPECT_LT(taken, 1'000'000U);
}

TEST_F(SerialCarrierTest, Line_IsTheClients) {
  client_.Set(B1200, 2);
  ASSERT_TRUE(carrier_.Line());
  EXPECT_EQ(TextOf(*carrier_.Line()), "1200,N,8,2");
}

TEST_F(SerialCarrierTest, Rest_IsWhatWasNotReceived) {
  EXPECT_EQ(carrier_.Rest(), "");
  const std::string bytes(5000, 'r');
  client_.Send(bytes);
  EXPECT_EQ(carrier_.Rest(), bytes);
}

TEST_F(SerialCarrierTest, End_PullsTheAdapter) {
  carrier_.End(Ending::kClose);
  EXPECT_TRUE(client_.IsGone());
  EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(link_)));
  EXPECT_FALSE(carrier_.Line());
  EXPECT_EQ(carrier_.Rest(), "");
  EXPECT_THROW(Done(carrier_.Receive(kForever)), std::system_error);
}

}  // namespace
}  // namespace kesp::simulator
