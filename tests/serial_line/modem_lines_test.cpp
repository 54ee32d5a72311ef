// The modem lines of a pseudo-terminal: what a program sets, sees and leaves in the log.
#include <gmock/gmock.h>
#include <sys/ioctl.h>

#include <cerrno>
#include <fstream>
#include <sstream>
#include <vector>

#include "pty_fixture.h"

namespace kesp::serial_line {
namespace {

using testing::ElementsAre;

class ModemLinesTest : public PtyFixture {
 protected:
  ModemLinesTest() { setenv("KESP_MODEM_LINES_LOG", log_.c_str(), 1); }
  ~ModemLinesTest() override {
    if (slave_ >= 0) close(slave_);
    unsetenv("KESP_MODEM_LINES_LOG");
    unlink(log_.c_str());
  }

  int Set(unsigned long request, int lines) const { return ioctl(slave_, request, &lines); }
  int Lines() const {
    int lines = -1;
    EXPECT_EQ(ioctl(slave_, TIOCMGET, &lines), 0);
    return lines;
  }
  void CloseSlave() {
    close(slave_);
    slave_ = -1;
  }
  // The log, each line without its time and the name of the terminal.
  std::vector<std::string> Changes() const {
    std::vector<std::string> changes;
    std::ifstream log(log_);
    for (std::string line; std::getline(log, line);) {
      std::istringstream words(line);
      long long nanoseconds = 0;
      std::string name;
      words >> nanoseconds >> name >> std::ws;
      EXPECT_GT(nanoseconds, 0) << line;
      EXPECT_EQ("/dev/" + name, slave_name()) << line;
      std::getline(words, changes.emplace_back());
    }
    return changes;
  }

  std::string log_ = testing::TempDir() + "kesp-lines-log-" + std::to_string(getpid());
  int slave_ = OpenSlave();
};

TEST_F(ModemLinesTest, Raised_AreSeenAndChangesAreLogged) {
  EXPECT_EQ(Lines(), 0);
  EXPECT_EQ(Set(TIOCMBIS, TIOCM_DTR), 0);
  EXPECT_EQ(Set(TIOCMBIS, TIOCM_RTS), 0);
  EXPECT_EQ(Set(TIOCMBIS, TIOCM_RTS), 0);
  EXPECT_EQ(Lines(), TIOCM_DTR | TIOCM_RTS);
  EXPECT_EQ(Set(TIOCMBIC, TIOCM_DTR), 0);
  EXPECT_EQ(Set(TIOCMBIC, TIOCM_DTR), 0);
  EXPECT_EQ(Set(TIOCMSET, TIOCM_DTR), 0);
  EXPECT_EQ(Set(TIOCMSET, TIOCM_DTR), 0);
  EXPECT_EQ(Lines(), TIOCM_DTR);
  EXPECT_THAT(Changes(), ElementsAre("DTR=1 RTS=0", "DTR=1 RTS=1", "DTR=0 RTS=1", "DTR=1 RTS=0"));
}

TEST_F(ModemLinesTest, Closed_FallAndAreDownWhenOpenedAnew) {
  Set(TIOCMSET, TIOCM_DTR | TIOCM_RTS);
  CloseSlave();
  slave_ = OpenSlave();
  EXPECT_EQ(Lines(), 0);
  EXPECT_THAT(Changes(), ElementsAre("DTR=1 RTS=1", "DTR=0 RTS=0"));
}

TEST_F(ModemLinesTest, OtherEndGone_IsAnError) {
  Set(TIOCMBIS, TIOCM_DTR);
  Unplug();
  int lines = 0;
  EXPECT_EQ(ioctl(slave_, TIOCMGET, &lines), -1);
  EXPECT_EQ(errno, EIO);
}

TEST_F(ModemLinesTest, OtherFiles_HaveNone) {
  const int pipe_or_file = open("/dev/null", O_RDWR);
  int lines = 0;
  EXPECT_EQ(ioctl(pipe_or_file, TIOCMGET, &lines), -1);
  EXPECT_EQ(errno, ENOTTY);
  close(pipe_or_file);
}

}  // namespace
}  // namespace kesp::serial_line
