// The pseudo-terminal and its link, with a client at the other end.
#include "simulator/pseudo_terminal.h"

#include <gtest/gtest.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "simulator/serial_client.h"

namespace kesp::simulator {
namespace {

namespace fs = std::filesystem;

class PseudoTerminalTest : public testing::Test {
 protected:
  PseudoTerminalTest() { fs::create_directory(folder_); }
  ~PseudoTerminalTest() override { fs::remove_all(folder_); }

  const fs::path folder_ = testing::TempDir() + "kesp_pty_" + std::to_string(::getpid());
  const fs::path link_ = folder_ / "com33";
};

std::string ReadSome(int descriptor) {
  std::array<char, 256> piece;
  const ssize_t count = ::read(descriptor, piece.data(), piece.size());
  return count < 0 ? "fault" : std::string(piece.data(), static_cast<std::size_t>(count));
}

TEST_F(PseudoTerminalTest, Link_LeadsToTheDeviceAndGoesWithIt) {
  {
    const PseudoTerminal terminal(link_);
    EXPECT_EQ(fs::read_symlink(link_), terminal.device());
    EXPECT_EQ(terminal.link(), link_);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()), 1);
  }
  EXPECT_TRUE(fs::is_empty(folder_));
}

TEST_F(PseudoTerminalTest, Bytes_PassUnchangedFromTheStart) {
  PseudoTerminal terminal(link_);
  const int master = terminal.TakeMaster();
  SerialClient client(link_);
  const std::string bytes("\r\n\x00\x03\x04\x11\x13\x1A\x7F\xFF", 10);
  client.Send(bytes);
  EXPECT_EQ(ReadSome(master), bytes);
  ASSERT_EQ(::write(master, bytes.data(), bytes.size()), 10);
  EXPECT_EQ(client.ReadTo("\xFF"), bytes);
  ::close(master);
}

TEST_F(PseudoTerminalTest, ClientThatClosed_IsNoFaultAndTheNextOneIsHeard) {
  PseudoTerminal terminal(link_);
  const int master = terminal.TakeMaster();
  for (const char* word : {"one", "two"}) {
    { SerialClient(link_).Send(word); }
    EXPECT_EQ(ReadSome(master), word);
  }
  ::close(master);
}

TEST_F(PseudoTerminalTest, LinkInThePlace_IsReplaced) {
  fs::create_symlink("/dev/null", link_);
  const PseudoTerminal terminal(link_);
  EXPECT_EQ(fs::read_symlink(link_), terminal.device());
}

TEST_F(PseudoTerminalTest, FileOrFolderInThePlace_IsRefusedAndStays) {
  std::ofstream(link_) << "precious";
  EXPECT_THROW(PseudoTerminal{link_}, std::system_error);
  EXPECT_EQ(fs::file_size(link_), 8U);
  fs::remove(link_);
  fs::create_directory(link_);
  EXPECT_THROW(PseudoTerminal{link_}, std::system_error);
  EXPECT_TRUE(fs::is_directory(link_));
}

TEST_F(PseudoTerminalTest, NoFolder_IsRefused) {
  EXPECT_THROW(PseudoTerminal(folder_ / "none" / "com1"), std::system_error);
}

TEST_F(PseudoTerminalTest, LinkOfSomeoneElse_IsLeftAtTheEnd) {
  {
    const PseudoTerminal first(link_);
    fs::remove(link_);
    fs::create_symlink("/dev/null", link_);
  }
  EXPECT_EQ(fs::read_symlink(link_), "/dev/null");
}

TEST_F(PseudoTerminalTest, Settings_AreThoseOfTheClient) {
  const PseudoTerminal terminal(link_);
  const SerialClient client(link_);
  client.Set(B9600);
  EXPECT_EQ(TextOf(terminal.settings()), "9600,N,8,1");
  client.Set(B19200, 2);
  EXPECT_EQ(TextOf(terminal.settings()), "19200,N,8,2");
}

TEST_F(PseudoTerminalTest, Pull_HangsUpTheClientOnceTheMasterIsClosed) {
  PseudoTerminal terminal(link_);
  const int master = terminal.TakeMaster();
  const SerialClient client(link_);
  terminal.Pull();
  EXPECT_FALSE(fs::exists(fs::symlink_status(link_)));
  ::close(master);
  EXPECT_TRUE(client.IsGone());
  EXPECT_THROW(client.Send("x"), std::system_error);
  EXPECT_THROW(terminal.settings(), std::system_error);
}

}  // namespace
}  // namespace kesp::simulator
