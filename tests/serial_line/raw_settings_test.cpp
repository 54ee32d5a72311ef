// The kernel's own settings of a pseudo-terminal, as its user and as the other end see them.
#include <asm/ioctls.h>
#include <asm/termbits.h>
#include <sys/ioctl.h>

#include "pty_fixture.h"
#include "simulator/character_frame.h"

namespace kesp::serial_line {
namespace {

class RawSettingsTest : public PtyFixture {
 protected:
  ~RawSettingsTest() override { close(slave_); }

  static termios2 SettingsOf(int descriptor) {
    termios2 settings{};
    EXPECT_EQ(ioctl(descriptor, TCGETS2, &settings), 0);
    return settings;
  }

  int slave_ = OpenSlave();
};

TEST_F(RawSettingsTest, EveryWayOfSetting_KeepsTheFrameAndAnyBitRate) {
  constexpr tcflag_t kFrame = CSIZE | PARENB | PARODD | CSTOPB;
  for (const unsigned long way : {TCSETS2, TCSETSW2, TCSETSF2}) {
    for (const tcflag_t frame : {CS7 | PARENB, CS8, CS5 | PARENB | PARODD | CSTOPB}) {
      termios2 settings = SettingsOf(slave_);
      settings.c_cflag = (settings.c_cflag & ~(kFrame | CBAUD)) | frame | BOTHER;
      settings.c_ispeed = settings.c_ospeed = 12345;
      EXPECT_EQ(ioctl(slave_, way, &settings), 0);
      EXPECT_EQ(SettingsOf(slave_).c_cflag & kFrame, frame);
      EXPECT_EQ(SettingsOf(slave_).c_ospeed, 12345U);
      EXPECT_EQ(AskedFlags(SettingsOf(master())) & kFrame, frame);
    }
  }
}

TEST_F(RawSettingsTest, OtherFiles_HaveNone) {
  const int file = open("/dev/null", O_RDWR);
  termios2 settings{};
  EXPECT_EQ(ioctl(file, TCGETS2, &settings), -1);
  EXPECT_EQ(ioctl(file, TCSETS2, &settings), -1);
  close(file);
}

}  // namespace
}  // namespace kesp::serial_line
