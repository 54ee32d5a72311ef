// kesp-sim wire as its clients meet it, from both ends.
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <future>
#include <memory>
#include <string>

#include "simulator/child_process.h"
#include "simulator/loopback_client.h"
#include "simulator/serial_client.h"

namespace kesp::simulator {
namespace {

namespace fs = std::filesystem;

class WireTest : public testing::Test {
 protected:
  WireTest() {
    const std::string line = program_.FirstLine();
    const std::string ready = "listening on 127.0.0.1:";
    if (line.rfind(ready, 0) == 0) port_ = static_cast<std::uint16_t>(std::stoi(line.substr(ready.size())));
  }

  // So that it removes its link.
  ~WireTest() override {
    program_.Signal(SIGTERM);
    program_.Wait();
  }

  // A client that has its line.
  std::unique_ptr<LoopbackClient> Connect() const {
    auto client = std::make_unique<LoopbackClient>(port_);
    EXPECT_EQ(client->ReadTo("\n").bytes, "ready\n");
    return client;
  }

  bool LinkIsThere() const { return fs::is_symlink(fs::symlink_status(link_)); }

  const std::string link_ = testing::TempDir() + "kesp_wire_test_" + std::to_string(::getpid());
  ChildProcess program_{{KESP_SIMULATOR, "wire", "--serial", link_}};
  std::uint16_t port_ = 0;
};

TEST_F(WireTest, Port_IsOneThatFitsSixteenBitsWithSign) {
  EXPECT_GE(port_, 20000);
  EXPECT_LE(port_, 32000);
  EXPECT_FALSE(LinkIsThere());
}

TEST_F(WireTest, Bytes_PassUnchangedBothWays) {
  const std::unique_ptr<LoopbackClient> client = Connect();
  SerialClient line(link_);
  const std::string bytes("\x00\r\n\x11\x13\x04\x80\xFF", 8);
  line.Send(bytes);
  EXPECT_EQ(client->ReadTo("\xFF").bytes, bytes);
  client->Send(bytes);
  EXPECT_EQ(line.ReadTo("\xFF"), bytes);
}

TEST_F(WireTest, ClientThatLeaves_PullsTheLineAndTheNextOneGetsANewOne) {
  for (int i = 0; i < 3; ++i) {
    std::unique_ptr<LoopbackClient> client = Connect();
    SerialClient line(link_);
    client->Send("1\r");
    EXPECT_EQ(line.ReadTo("\r"), "1\r");
    client.reset();
    EXPECT_TRUE(line.IsGone());
    EXPECT_FALSE(LinkIsThere());
  }
}

TEST_F(WireTest, ManyBytes_ReachALineThatReads) {
  const std::unique_ptr<LoopbackClient> client = Connect();
  SerialClient line(link_);
  std::future<std::string> read = std::async(std::launch::async, [&line] { return line.ReadTo("!"); });
  client->Send(std::string(100'000, 'x') + "!");
  EXPECT_EQ(read.get().size(), 100'001U);
}

TEST_F(WireTest, ClientThatDoesNotRead_LetsTheLineFillUpAndLosesNothing) {
  const std::unique_ptr<LoopbackClient> client = Connect();
  const SerialClient line(link_);
  const std::size_t taken = line.Fill();
  EXPECT_GT(taken, 10'000U);
  std::future<void> last = std::async(std::launch::async, [&line] { line.Send("!"); });
  EXPECT_EQ(client->ReadTo("!").bytes.size(), taken + 1);
  last.get();
}

TEST_F(WireTest, LineThatDoesNotRead_StopsTheClientAndGoesWithItAllTheSame) {
  std::unique_ptr<LoopbackClient> client = Connect();
  const SerialClient line(link_);
  client->Send(std::string(20'000, 'x'));
  client.reset();
  EXPECT_TRUE(line.IsGone());
  EXPECT_FALSE(LinkIsThere());
}

TEST_F(WireTest, SecondClient_WaitsForItsTurn) {
  std::unique_ptr<LoopbackClient> first = Connect();
  LoopbackClient second(port_);
  EXPECT_EQ(second.ReadTo("\n", std::chrono::milliseconds(100)).bytes, "");
  first.reset();
  EXPECT_EQ(second.ReadTo("\n").bytes, "ready\n");
}

TEST_F(WireTest, Signal_EndsItAndRemovesTheLink) {
  const std::unique_ptr<LoopbackClient> client = Connect();
  EXPECT_TRUE(LinkIsThere());
  program_.Signal(SIGTERM);
  EXPECT_EQ(program_.Wait(), 0) << program_.Error();
  EXPECT_FALSE(LinkIsThere());
}

TEST(WireProgram, NoPathOrNoPlaceForIt_IsAMistake) {
  ChildProcess without({KESP_SIMULATOR, "wire"});
  EXPECT_EQ(without.Wait(), 2);
  EXPECT_NE(without.Error(), "");
  ChildProcess nowhere({KESP_SIMULATOR, "wire", "--serial", "/nowhere/at/all"});
  const std::string line = nowhere.FirstLine();
  ASSERT_NE(line, "");
  const LoopbackClient client(static_cast<std::uint16_t>(std::stoi(line.substr(line.rfind(':') + 1))));
  EXPECT_EQ(nowhere.Wait(), 1);
  EXPECT_EQ(nowhere.Error(), "kesp-sim: cannot serve /nowhere/at/all: there is no such port or path\n");
}

}  // namespace
}  // namespace kesp::simulator
