// Opening the slave of a pseudo-terminal, once and twice.
#include <sys/file.h>

#include <cerrno>

#include "pty_fixture.h"

namespace kesp::serial_line {
namespace {

class ExclusiveLineTest : public PtyFixture {};

TEST_F(ExclusiveLineTest, OpenASecondTime_IsDeniedUntilClosed) {
  const int first = OpenSlave();
  ASSERT_GE(first, 0);
  EXPECT_EQ(OpenSlave(), -1);
  EXPECT_EQ(errno, EACCES);
  EXPECT_EQ(open64(slave_name().c_str(), O_RDWR | O_NOCTTY), -1);
  EXPECT_EQ(errno, EACCES);
  close(first);
  const int again = OpenSlave();
  EXPECT_GE(again, 0);
  close(again);
}

TEST_F(ExclusiveLineTest, CopyOfTheDescriptor_KeepsTheLine) {
  const int first = OpenSlave();
  const int copy = dup(first);
  close(first);
  EXPECT_EQ(OpenSlave(), -1);
  close(copy);
}

TEST_F(ExclusiveLineTest, LineHeldByAnotherProgram_IsDenied) {
  // As a program opens it that does not know of us.
  const int held = openat(AT_FDCWD, slave_name().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  ASSERT_GE(held, 0);
  const int before = OpenSlave();
  EXPECT_GE(before, 0);
  close(before);
  ASSERT_EQ(flock(held, LOCK_EX | LOCK_NB), 0);
  EXPECT_EQ(OpenSlave(), -1);
  EXPECT_EQ(errno, EACCES);
  close(held);
}

TEST_F(ExclusiveLineTest, OtherFiles_CanBeOpenTwice) {
  for (const char* path : {"/dev/null", "/dev/ptmx", "/proc/self/exe"}) {
    const int first = open(path, O_RDONLY | O_NOCTTY);
    const int second = open(path, O_RDONLY | O_NOCTTY);
    EXPECT_GE(first, 0) << path;
    EXPECT_GE(second, 0) << path;
    close(first);
    close(second);
  }
}

TEST_F(ExclusiveLineTest, MissingFile_IsMissing) {
  EXPECT_EQ(open("/nowhere/at/all", O_RDWR), -1);
  EXPECT_EQ(errno, ENOENT);
}

TEST_F(ExclusiveLineTest, NewFile_HasTheModeAskedFor) {
  const std::string path = testing::TempDir() + "kesp-mode-" + std::to_string(getpid());
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600);
  ASSERT_GE(file, 0);
  struct stat status {};
  EXPECT_EQ(fstat(file, &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);
  close(file);
  unlink(path.c_str());
}

}  // namespace
}  // namespace kesp::serial_line
