// The program kesp-sim as its users meet it: output, log, signals, exit codes.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include "simulator/child_process.h"
#include "simulator/loopback_client.h"

namespace kesp::simulator {
namespace {

constexpr char kProgram[] = KESP_SIMULATOR;

// The port of the line that says that the program is ready; 0 when it is not that line.
std::uint16_t PortOf(const std::string& line) {
  const std::string ready = "listening on 127.0.0.1:";
  if (line.rfind(ready, 0) != 0) return 0;
  return static_cast<std::uint16_t>(std::stoi(line.substr(ready.size())));
}

TEST(Program, Signals_EndItCleanly) {
  for (const int signal : {SIGTERM, SIGINT}) {
    ChildProcess program({kProgram});
    const std::uint16_t port = PortOf(program.FirstLine());
    EXPECT_GE(port, 20000);
    EXPECT_LE(port, 32000);
    LoopbackClient client(port);
    EXPECT_EQ(client.Ask("*VER"), "1.0");
    program.Signal(signal);
    EXPECT_EQ(program.Wait(), 0) << program.Error();
    EXPECT_EQ(program.Output(), "listening on 127.0.0.1:" + std::to_string(port) + "\n");
    EXPECT_EQ(client.ReadToEnd().bytes, "");
  }
}

TEST(Program, WithoutQuiet_LogsToStandardError) {
  ChildProcess program({kProgram, "--once"});
  { EXPECT_EQ(LoopbackClient(PortOf(program.FirstLine())).Ask("t"), "21.5"); }
  EXPECT_EQ(program.Wait(), 0);
  EXPECT_NE(program.Error().find(" #1 command \"t\"\n"), std::string::npos) << program.Error();
  EXPECT_NE(program.Error().find(" #1 reply \"21.5\\r\" (5 bytes, 1 piece)\n"), std::string::npos);
}

TEST(Program, LogAndQuiet_LogsToTheFileOnly) {
  const std::string log = testing::TempDir() + "kesp_program_test.log";
  std::remove(log.c_str());
  ChildProcess program({kProgram, "--once", "--quiet", "--log", log});
  { EXPECT_EQ(LoopbackClient(PortOf(program.FirstLine())).Ask("t"), "21.5"); }
  EXPECT_EQ(program.Wait(), 0);
  EXPECT_EQ(program.Error(), "");
  std::ifstream stream(log);
  const std::string lines{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  EXPECT_NE(lines.find(" #1 connected from 127.0.0.1:"), std::string::npos) << lines;
  EXPECT_NE(lines.find(" #1 command \"t\"\n"), std::string::npos) << lines;
  EXPECT_NE(lines.find(" #1 closed by the client\n"), std::string::npos) << lines;
  std::remove(log.c_str());
}

TEST(Program, PersonalityFile_IsPlayed) {
  ChildProcess program({kProgram, KESP_EXAMPLES "/bench-top-controller.json"});
  EXPECT_EQ(LoopbackClient(PortOf(program.FirstLine())).Ask("*IDN?"), "KESP,BT200,SIM20417,2.3");
}

TEST(Program, PortInUse_ExitsWithOne) {
  ChildProcess first({kProgram});
  const std::string port = std::to_string(PortOf(first.FirstLine()));
  ChildProcess second({kProgram, "--port", port});
  EXPECT_EQ(second.Wait(), 1);
  EXPECT_EQ(second.Output(), "");
  EXPECT_EQ(second.Error(), "kesp-sim: cannot listen on 127.0.0.1 port " + port + ": the port is in use\n");
}

TEST(Program, AddressOfAnotherMachine_ExitsWithOne) {
  ChildProcess program({kProgram, "--bind", "192.0.2.1", "--port", "20001"});
  EXPECT_EQ(program.Wait(), 1);
  EXPECT_EQ(program.Error(),
            "kesp-sim: cannot listen on 192.0.2.1 port 20001: this machine has no such address\n");
}

TEST(Program, BadPersonality_ExitsWithTwoAndThePlace) {
  const std::string file = testing::TempDir() + "kesp_program_test.json";
  std::ofstream(file) << R"({"commands": {"MEAS?": [{"send": "1"}, {"wait_ms": "long"}]}})";
  ChildProcess program({kProgram, file});
  EXPECT_EQ(program.Wait(), 2);
  EXPECT_EQ(program.Output(), "");
  EXPECT_EQ(program.Error(),
            file + ":1: /commands/MEAS?/1/wait_ms: must be a whole number from 0 to 3600000\n");
  std::remove(file.c_str());
}

TEST(Program, Check_TellsWhatAFileIsOrEveryMistakeInIt) {
  const std::string good = KESP_EXAMPLES "/bus.json";
  ChildProcess program({kProgram, "check", good});
  EXPECT_EQ(program.Wait(), 0) << program.Error();
  EXPECT_EQ(program.Output(), good + ": a bus with 2 devices\n");
  const std::string bad = testing::TempDir() + "kesp_check_test.json";
  std::ofstream(bad) << "{\n\"a\": 1,\n\"default\": 2}";
  ChildProcess refused({kProgram, "check", bad});
  EXPECT_EQ(refused.Wait(), 2);
  EXPECT_EQ(refused.Error().find(bad + ":2: /a: is not a known member\n" + bad + ":3: /default: "), 0U)
      << refused.Error();
  ChildProcess served({kProgram, good});
  EXPECT_EQ(served.Wait(), 2);
  EXPECT_EQ(served.Error(), good + ": is a bus, which the simulated GPIB driver plays (Gpib-32.json)\n");
  std::remove(bad.c_str());
}

TEST(Program, Example_IsWrittenWhereNothingIs) {
  const std::string file = testing::TempDir() + "kesp_example_test.json";
  std::remove(file.c_str());
  ChildProcess written({kProgram, "example", "device", file});
  EXPECT_EQ(written.Wait(), 0) << written.Error();
  ChildProcess again({kProgram, "example", "bus", file});
  EXPECT_EQ(again.Wait(), 2);
  EXPECT_EQ(again.Error(), file + ": is there already\n");
  ChildProcess checked({kProgram, "check", file});
  EXPECT_EQ(checked.Wait(), 0) << checked.Error();
  ChildProcess printed({kProgram, "example", "radio-modem"});
  EXPECT_EQ(printed.Wait(), 0);
  EXPECT_NE(printed.Output().find("\"radio_modem\""), std::string::npos);
  ChildProcess unknown({kProgram, "example", "toaster"});
  EXPECT_EQ(unknown.Wait(), 2);
  EXPECT_NE(unknown.Error().find("radio-modem"), std::string::npos) << unknown.Error();
  std::remove(file.c_str());
}

TEST(Program, BadCommandLineOrLogPath_ExitsWithTwo) {
  const std::vector<std::vector<std::string>> mistakes = {
      {kProgram, "--bogus"}, {kProgram, "--port", "70000"}, {kProgram, "--log", "/nowhere/at/all.log"}};
  for (const std::vector<std::string>& command : mistakes) {
    ChildProcess program(command);
    EXPECT_EQ(program.Wait(), 2) << command.back();
    EXPECT_EQ(program.Output(), "");
    EXPECT_NE(program.Error(), "");
  }
}

TEST(Program, Help_GoesToStandardOutput) {
  ChildProcess program({kProgram, "--help"});
  EXPECT_EQ(program.Wait(), 0);
  EXPECT_NE(program.Output().find("Examples:"), std::string::npos);
  EXPECT_EQ(program.Error(), "");
}

}  // namespace
}  // namespace kesp::simulator
