// Bit rate, data bits, parity and stop bits of a pseudo-terminal, as its user and as the other end see them.
#include <sys/ioctl.h>
#include <termios.h>

#include "pty_fixture.h"
#include "simulator/character_frame.h"

namespace kesp::serial_line {
namespace {

class LineSettingsTest : public PtyFixture {
 protected:
  ~LineSettingsTest() override { close(slave_); }

  void Set(tcflag_t frame) const {
    termios settings{};
    EXPECT_EQ(tcgetattr(slave_, &settings), 0);
    cfmakeraw(&settings);
    cfsetspeed(&settings, B19200);
    settings.c_cflag = (settings.c_cflag & ~kFrame) | frame;
    EXPECT_EQ(tcsetattr(slave_, TCSANOW, &settings), 0);
  }
  tcflag_t Frame() const {
    termios settings{};
    EXPECT_EQ(tcgetattr(slave_, &settings), 0);
    EXPECT_EQ(cfgetospeed(&settings), speed_t{B19200});
    return settings.c_cflag & kFrame;
  }
  tcflag_t FrameAtTheOtherEnd() const {
    termios settings{};
    EXPECT_EQ(tcgetattr(master(), &settings), 0);
    return AskedFlags(settings) & kFrame;
  }

  static constexpr tcflag_t kFrame = CSIZE | PARENB | PARODD | CSTOPB;
  int slave_ = OpenSlave();
};

TEST_F(LineSettingsTest, EveryFrame_IsKeptAndSeenAtBothEnds) {
  for (const tcflag_t size : {CS5, CS6, CS7, CS8}) {
    for (const tcflag_t parity : {0, PARENB, PARENB | PARODD}) {
      for (const tcflag_t stop : {0, CSTOPB}) {
        const tcflag_t frame = size | parity | stop;
        Set(frame);
        EXPECT_EQ(Frame(), frame);
        EXPECT_EQ(FrameAtTheOtherEnd(), frame);
      }
    }
  }
}

TEST_F(LineSettingsTest, NeverSet_AreWhatLinuxSays) {
  EXPECT_EQ(FrameAtTheOtherEnd(), tcflag_t{CS8});
}

TEST_F(LineSettingsTest, SevenBitsAndParity_PassEveryByte) {
  Set(CS7 | PARENB);
  const std::string bytes("\x00\x7F\x80\xFF", 4);
  EXPECT_EQ(write(master(), bytes.data(), bytes.size()), 4);
  std::string read_bytes(4, '\0');
  EXPECT_EQ(read(slave_, read_bytes.data(), read_bytes.size()), 4);
  EXPECT_EQ(read_bytes, bytes);
}

TEST_F(LineSettingsTest, OtherFiles_HaveNone) {
  const int file = open("/dev/null", O_RDWR);
  termios settings{};
  EXPECT_EQ(tcgetattr(file, &settings), -1);
  EXPECT_EQ(tcsetattr(file, TCSANOW, &settings), -1);
  close(file);
}

}  // namespace
}  // namespace kesp::serial_line
