// The program kesp-sim with --discovery, as clients on a network meet it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "simulator/child_process.h"
#include "simulator/loopback_client.h"
#include "simulator/loopback_datagrams.h"

namespace kesp::simulator {
namespace {

using std::chrono::milliseconds;
using testing::HasSubstr;

// The program with a discovery port of the system's choice.
class DiscoverableProgram : public ChildProcess {
 public:
  explicit DiscoverableProgram(std::vector<std::string> arguments)
      : ChildProcess(Command(std::move(arguments))) {
    tcp_port = PortIn(FirstLine(), "listening on ");
    discovery_port = PortIn(SecondLine(), "discovery on 0.0.0.0:");
  }

  std::uint16_t tcp_port = 0;
  std::uint16_t discovery_port = 0;

 private:
  static std::vector<std::string> Command(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {KESP_SIMULATOR, "--discovery", "--discovery-port", "0"});
    return arguments;
  }

  // 0 when the line does not begin so.
  static std::uint16_t PortIn(const std::string& line, const std::string& beginning) {
    if (line.rfind(beginning, 0) != 0) return 0;
    return static_cast<std::uint16_t>(std::stoi(line.substr(line.rfind(':') + 1)));
  }

  std::string SecondLine() {
    const std::string output = OutputWithLines(2);
    const std::size_t begin = output.find('\n');
    return begin == std::string::npos ? output : output.substr(begin + 1);
  }
};

TEST(DiscoverableProgram, Request_IsAnsweredFromTheAddressOfTcp) {
  DiscoverableProgram program({"--bind", "127.0.3.4"});
  LoopbackDatagrams client;
  client.Discover(program.discovery_port);
  const auto heard = client.Receive();
  ASSERT_TRUE(heard) << program.Error();
  EXPECT_EQ(heard->address, "127.0.3.4");
  EXPECT_EQ(heard->port, program.discovery_port);
  EXPECT_NE(heard->bytes.find('\xF7'), std::string::npos);
  program.Signal(SIGTERM);
  EXPECT_EQ(program.Wait(), 0);
  const std::string sender = "127.0.0.1:" + std::to_string(client.port());
  EXPECT_THAT(program.Error(), HasSubstr(" discovery from " + sender + "\n"));
  EXPECT_THAT(program.Error(), HasSubstr(" discovery reply to " + sender + " from 127.0.3.4 (30 bytes)\n"));
}

TEST(DiscoverableProgram, WildcardAddress_LeavesTheChoiceToTheSystem) {
  DiscoverableProgram program({"--bind", "0.0.0.0"});
  EXPECT_EQ(LoopbackClient(program.tcp_port).Ask("*VER"), "1.0");
  LoopbackDatagrams client;
  client.Discover(program.discovery_port);
  const auto heard = client.Receive();
  ASSERT_TRUE(heard) << program.Error();
  EXPECT_EQ(heard->address, "127.0.0.1");
}

TEST(DiscoverableProgram, AddressRange_AnswersOnceFromEach) {
  DiscoverableProgram program({"--discovery-from", "127.0.1.1-127.0.1.50"});
  LoopbackDatagrams client;
  client.Discover(program.discovery_port);
  for (int i = 1; i <= 50; ++i) {
    const auto heard = client.Receive();
    ASSERT_TRUE(heard) << i;
    EXPECT_EQ(heard->address, "127.0.1." + std::to_string(i));
    EXPECT_EQ(heard->port, program.discovery_port);
  }
  EXPECT_FALSE(client.Receive(milliseconds(50)));
  program.Signal(SIGTERM);
  EXPECT_EQ(program.Wait(), 0);
  EXPECT_THAT(program.Error(), HasSubstr(" from 127.0.1.1-127.0.1.50: 50 sent (1500 bytes), 0 failed\n"));
}

TEST(DiscoverableProgram, AddressesOfSomebodyElse_AreLoggedAndTheServiceGoesOn) {
  DiscoverableProgram program({"--discovery-from", "198.51.100.1-198.51.100.20"});
  LoopbackDatagrams client;
  client.Discover(program.discovery_port);
  EXPECT_FALSE(client.Receive(milliseconds(100)));
  EXPECT_EQ(LoopbackClient(program.tcp_port).Ask("*VER"), "1.0");
  program.Signal(SIGTERM);
  EXPECT_EQ(program.Wait(), 0);
  EXPECT_THAT(program.Error(), HasSubstr(" from 198.51.100.1-198.51.100.20: 0 sent (0 bytes), 20 failed\n"));
}

TEST(DiscoverableProgram, LateAnswer_HoldsUpNeitherTcpNorTheNextRequest) {
  const std::string file = testing::TempDir() + "kesp_discovery_program_test.json";
  std::ofstream(file)
      << R"({"discovery": {"cycle": [[{"wait_ms": 1500}, {"send": "late"}], [{"send": "now"}]]},
                             "commands": {"A?": [{"send": "1"}]}})";
  DiscoverableProgram program({file});
  LoopbackDatagrams client;
  const auto start = std::chrono::steady_clock::now();
  client.Discover(program.discovery_port);
  client.Discover(program.discovery_port);
  EXPECT_EQ(LoopbackClient(program.tcp_port).Ask("A?"), "1");
  EXPECT_EQ(client.Receive()->bytes, "now");
  EXPECT_EQ(client.Receive()->bytes, "late");
  EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(1500));
  std::remove(file.c_str());
}

TEST(DiscoverableProgram, LongStorm_LeavesTcpAlive) {
  const std::string file = testing::TempDir() + "kesp_discovery_storm_test.json";
  std::ofstream(file) << R"({"discovery": [{"storm": [{"send": "x"}], "datagrams": 1000000}],
                             "commands": {"A?": [{"send": "1"}]}})";
  DiscoverableProgram program({file, "--quiet"});
  LoopbackDatagrams client;
  client.Discover(program.discovery_port);
  ASSERT_TRUE(client.Receive());
  LoopbackClient tcp(program.tcp_port);
  for (int i = 0; i < 20; ++i) EXPECT_EQ(tcp.Ask("A?"), "1");
  program.Signal(SIGTERM);
  EXPECT_EQ(program.Wait(), 0);
  std::remove(file.c_str());
}

TEST(DiscoverableProgram, Once_EndsWithItsClientAlsoWhileAnAnswerWaits) {
  const std::string file = testing::TempDir() + "kesp_discovery_once_test.json";
  std::ofstream(file) << R"({"discovery": [{"wait_ms": 3600000}, {"send": "x"}],
                             "commands": {"A?": [{"send": "1"}]}})";
  DiscoverableProgram program({file, "--once"});
  LoopbackDatagrams client;
  client.Discover(program.discovery_port);
  { EXPECT_EQ(LoopbackClient(program.tcp_port).Ask("A?"), "1"); }
  EXPECT_EQ(program.Wait(), 0) << program.Error();
  std::remove(file.c_str());
}

TEST(DiscoverableProgram, DiscoveryPortInUse_ExitsWithOne) {
  LoopbackDatagrams holder;
  const std::string port = std::to_string(holder.port());
  ChildProcess program({KESP_SIMULATOR, "--discovery", "--discovery-port", port});
  EXPECT_EQ(program.Wait(), 1);
  EXPECT_EQ(program.Output(), "");
  EXPECT_EQ(program.Error(),
            "kesp-sim: cannot listen for discovery on port " + port + ": the port is in use\n");
}

TEST(DiscoverableProgram, WithInstrument_ReadsTheFirstLineOnly) {
  ChildProcess script({KESP_WITH_INSTRUMENT, "--quiet", "--discovery", "--discovery-port", "0", "--bind",
                       "127.0.2.1", "--", "/bin/sh", "-c", "echo $KESP_INSTRUMENT_HOST"},
                      {"KESP_INSTRUMENT=" KESP_SIMULATOR});
  EXPECT_EQ(script.Wait(), 0) << script.Error();
  EXPECT_EQ(script.Output(), "127.0.2.1\n");
}

}  // namespace
}  // namespace kesp::simulator
