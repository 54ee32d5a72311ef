// The program kesp-sim on a serial line, as its users meet it.
#include <gtest/gtest.h>
#include <termios.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

#include "simulator/child_process.h"
#include "simulator/serial_client.h"

namespace kesp::simulator {
namespace {

constexpr char kProgram[] = KESP_SIMULATOR;

class SerialProgramTest : public testing::Test {
 protected:
  // A program that a test leaves running is killed and cannot remove its link.
  ~SerialProgramTest() override {
    std::filesystem::remove(file_);
    std::filesystem::remove(link_);
  }

  bool LinkIsThere() const { return std::filesystem::is_symlink(std::filesystem::symlink_status(link_)); }

  std::string WithPersonality(const std::string& json) const {
    std::ofstream(file_) << json;
    return file_;
  }

  const std::string link_ = testing::TempDir() + "kesp_serial_program_" + std::to_string(::getpid());
  const std::string file_ = link_ + ".json";
};

TEST_F(SerialProgramTest, Signals_EndItAndRemoveTheLink) {
  for (const int signal : {SIGTERM, SIGINT}) {
    ChildProcess program({kProgram, "--serial", link_, "--quiet"});
    EXPECT_EQ(program.FirstLine(), "serving " + link_);
    EXPECT_EQ(SerialClient(link_).Ask("*VER"), "1.0");
    EXPECT_EQ(SerialClient(link_).Ask("t"), "21.5");
    program.Signal(signal);
    EXPECT_EQ(program.Wait(), 0) << program.Error();
    EXPECT_FALSE(LinkIsThere());
  }
}

TEST_F(SerialProgramTest, Log_HasSettingsCommandsAndEveryByte) {
  ChildProcess program({kProgram, "--serial", link_});
  program.FirstLine();
  {
    SerialClient client(link_);
    client.Set(B9600);
    EXPECT_EQ(client.Ask("t"), "21.5");
    client.Send("no end");
  }
  program.Signal(SIGTERM);
  EXPECT_EQ(program.Wait(), 0);
  const std::string log = program.Error();
  const std::vector<std::string> expected = {" #1 plugged in as " + link_, " #1 line 9600,N,8,1\n",
                                             " #1 received \"t\\r\"\n",    " #1 command \"t\"\n",
                                             " #1 reply \"21.5\\r\" (",    " #1 received \"no end\"\n"};
  std::size_t place = 0;
  for (const std::string& text : expected) {
    const std::size_t found = log.find(text, place);
    ASSERT_NE(found, std::string::npos) << text << "\n" << log;
    place = found;
  }
}

TEST_F(SerialProgramTest, WrongBitRate_IsAnsweredWithGarbageUntilItIsRight) {
  ChildProcess program({kProgram, "--serial", link_,
                        WithPersonality(R"({"line": {"baud": 9600}, "commands": {"A?": [{"send": "1"}]}})")});
  program.FirstLine();
  SerialClient client(link_);
  client.Set(B19200);
  client.Send("A?\r");
  EXPECT_EQ(client.ReadTo("\xE3"), std::string("\xFE\x87\x00\x1C\xF8\x83\x9F\xE3", 8));
  client.Set(B9600);
  EXPECT_EQ(client.Ask("A?"), "1");
  EXPECT_NE(program.Error().find(" #1 garbled: the instrument's line is 9600,-,-,-\n"), std::string::npos);
}

TEST_F(SerialProgramTest, CloseAction_PullsTheAdapterAndTheProgramStays) {
  ChildProcess program(
      {kProgram, "--serial", link_, WithPersonality(R"({"commands": {"BYE": [{"close": true}]}})")});
  program.FirstLine();
  SerialClient client(link_);
  client.Send("BYE\r");
  EXPECT_TRUE(client.IsGone());
  EXPECT_FALSE(LinkIsThere());
  program.Signal(SIGTERM);
  EXPECT_EQ(program.Wait(), 0);
}

TEST_F(SerialProgramTest, RadioModem_EntersCommandModeAfterItsSilences) {
  ChildProcess program({kProgram, "--serial", link_, KESP_EXAMPLES "/radio-modem.json"});
  program.FirstLine();
  SerialClient client(link_);
  client.Set(B9600);
  // Nothing has come before: silence enough.
  client.Send("+++");
  EXPECT_EQ(client.ReadTo("\r"), "OK\r");
  EXPECT_EQ(client.Ask("ATDL1A"), "OK");
  EXPECT_EQ(client.Ask("ATCN"), "OK");
  EXPECT_EQ(client.Ask("MEAS?"), "12.003");
  EXPECT_NE(program.Error().find(" #1 modem command \"ATDL1A\"\n"), std::string::npos) << program.Error();
}

TEST_F(SerialProgramTest, DeviceOverTcp_IsAMistake) {
  const std::string file = KESP_EXAMPLES "/radio-modem.json";
  ChildProcess program({kProgram, file});
  EXPECT_EQ(program.Wait(), 2);
  EXPECT_EQ(program.Error(), file + ": is a device at a serial line, which goes with --serial\n");
}

TEST_F(SerialProgramTest, FileInThePlace_ExitsWithOne) {
  std::ofstream(file_) << "precious";
  ChildProcess program({kProgram, "--serial", file_});
  EXPECT_EQ(program.Wait(), 1);
  EXPECT_EQ(program.Output(), "");
  EXPECT_EQ(program.Error(), "kesp-sim: cannot serve " + file_ + ": something else has that name\n");
}

}  // namespace
}  // namespace kesp::simulator
