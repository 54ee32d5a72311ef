// The script with-instrument: the command's exit code comes back, and no process stays.
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "simulator/child_process.h"
#include "simulator/loopback_client.h"

namespace kesp::simulator {
namespace {

// Runs the script with these arguments and the program of this build.
class Script : public ChildProcess {
 public:
  explicit Script(std::vector<std::string> arguments, const std::string& program = KESP_SIMULATOR)
      : ChildProcess(WithScript(std::move(arguments)), {"KESP_INSTRUMENT=" + program}) {}

 private:
  static std::vector<std::string> WithScript(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), KESP_WITH_INSTRUMENT);
    return arguments;
  }
};

// What the command says about its instrument and itself: "port instrument-id own-id".
constexpr char kTell[] = "echo $KESP_INSTRUMENT_PORT $KESP_INSTRUMENT_PID $$";

struct Told {
  explicit Told(const std::string& line) { std::istringstream(line) >> port >> instrument >> command; }
  std::uint16_t port = 0;
  pid_t instrument = 0;
  pid_t command = 0;
};

TEST(WithInstrument, Command_FindsTheInstrument) {
  Script script({"--quiet", "--", "/bin/bash", "-c",
                 "exec 3<>/dev/tcp/$KESP_INSTRUMENT_HOST/$KESP_INSTRUMENT_PORT; printf '*VER\\r' >&3; "
                 "read -r -d $'\\r' -t 10 -u 3 reply; echo \"got $reply\""});
  EXPECT_EQ(script.Wait(), 0) << script.Error();
  EXPECT_EQ(script.Output(), "got 1.0\n");
  EXPECT_EQ(script.Error(), "");
}

TEST(WithInstrument, ExitCode_IsTheCommandsAndNoProcessStays) {
  for (const int code : {0, 7, 124}) {
    Script script({"--", "/bin/sh", "-c", std::string(kTell) + "; exit " + std::to_string(code)});
    EXPECT_EQ(script.Wait(), code);
    const Told told(script.Output());
    ASSERT_GT(told.instrument, 0) << script.Error();
    EXPECT_TRUE(IsGone(told.instrument));
    EXPECT_THROW(LoopbackClient(told.port), std::system_error);
  }
}

TEST(WithInstrument, CommandEndedByASignal_LeavesNoProcess) {
  Script script({"--", "/bin/sh", "-c", std::string(kTell) + "; kill -9 $$"});
  EXPECT_EQ(script.Wait(), 128 + 9);
  const Told told(script.Output());
  ASSERT_GT(told.instrument, 0);
  EXPECT_TRUE(IsGone(told.instrument));
}

TEST(WithInstrument, Interrupted_EndsCommandAndInstrument) {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    Script script({"--", "/bin/sh", "-c", std::string(kTell) + "; exec sleep 300"});
    const Told told(script.FirstLine());
    ASSERT_GT(told.instrument, 0);
    script.Signal(signal);
    EXPECT_EQ(script.Wait(), 128 + signal);
    EXPECT_TRUE(IsGone(told.instrument));
    EXPECT_TRUE(IsGone(told.command));
  }
}

TEST(WithInstrument, Arguments_ReachInstrumentAndCommandUnchanged) {
  Script script({KESP_EXAMPLES "/torture.json", "--bind", "127.0.0.1", "--", "/bin/sh", "-c",
                 "echo \"$1|$2|$KESP_INSTRUMENT_HOST\"", "sh", "two words", "--"});
  EXPECT_EQ(script.Wait(), 0);
  EXPECT_EQ(script.Output(), "two words|--|127.0.0.1\n");
}

constexpr char kTellAll[] =
    "echo \"${KESP_INSTRUMENT_HOST-none}|${KESP_INSTRUMENT_SERIAL-none}|${KESP_INSTRUMENT_LOG-none}\"";

TEST(WithInstrument, SerialLineAndLog_AreToldToTheCommand) {
  const std::string line = testing::TempDir() + "kesp_with_serial_" + std::to_string(::getpid());
  const std::string log = line + ".log";
  Script script({"--serial", line, "--quiet", "--log", log, "--", "/bin/sh", "-c",
                 std::string("test -e \"$KESP_INSTRUMENT_SERIAL\" && ") + kTellAll});
  EXPECT_EQ(script.Wait(), 0) << script.Error();
  EXPECT_EQ(script.Output(), "none|" + line + "|" + log + "\n");
  Script with_signs({"--serial=" + line, "--log=" + log, "--", "/bin/sh", "-c", kTellAll});
  EXPECT_EQ(with_signs.Wait(), 0) << with_signs.Error();
  EXPECT_EQ(with_signs.Output(), "none|" + line + "|" + log + "\n");
  EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(line)));
  std::filesystem::remove(log);
}

TEST(WithInstrument, Wire_LetsTheCommandPlayTheInstrument) {
  const std::string line = testing::TempDir() + "kesp_with_wire_" + std::to_string(::getpid());
  Script script(
      {"--wire", "--serial", line, "--", "/bin/bash", "-c",
       std::string("exec 3<>/dev/tcp/$KESP_INSTRUMENT_HOST/$KESP_INSTRUMENT_PORT; "
                   "read -r -t 10 -u 3 word; test -e \"$KESP_INSTRUMENT_SERIAL\" && echo $word && ") +
           kTellAll});
  EXPECT_EQ(script.Wait(), 0) << script.Error();
  EXPECT_EQ(script.Output(), "ready\n127.0.0.1|" + line + "|none\n");
}

TEST(WithInstrument, InstrumentThatDoesNotStart_RunsNoCommand) {
  Script script({"--bogus", "--", "/bin/echo", "ran"});
  EXPECT_EQ(script.Wait(), 125);
  EXPECT_EQ(script.Output(), "");
  EXPECT_NE(script.Error().find("the instrument did not become ready"), std::string::npos) << script.Error();
}

TEST(WithInstrument, NoSuchProgramOrNoCommand_SaysSo) {
  Script missing({"--", "/bin/echo", "ran"}, "/nowhere/kesp-sim");
  EXPECT_EQ(missing.Wait(), 125);
  EXPECT_NE(missing.Error().find("no kesp-sim found"), std::string::npos) << missing.Error();
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{}, {"--quiet"}, {"--quiet", "--"}}) {
    Script script(arguments);
    EXPECT_EQ(script.Wait(), 125);
    EXPECT_NE(script.Error().find("usage: with-instrument"), std::string::npos) << script.Error();
  }
}

}  // namespace
}  // namespace kesp::simulator
