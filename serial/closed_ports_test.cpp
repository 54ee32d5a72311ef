// Unit tests of the note of ports that were closed a moment ago.
#include "serial/closed_ports.h"

#include <gtest/gtest.h>

namespace kesp {
namespace {

TEST(ClosedPortsTest, Closed_CountsForHalfASecond) {
  // The last ones are before and at the counter's wrap.
  for (const std::uint32_t tick : {1'000'000U, 1'000'001U, 0U, 0xFFFFFFF0U, 0xFFFFFFFFU}) {
    ClosedPorts ports;
    EXPECT_FALSE(ports.WasJustClosed(7, tick));
    ports.NoteClosed(7, tick);
    EXPECT_TRUE(ports.WasJustClosed(7, tick)) << tick;
    EXPECT_TRUE(ports.WasJustClosed(7, tick + 498)) << tick;
    EXPECT_FALSE(ports.WasJustClosed(7, tick + 501)) << tick;
    EXPECT_FALSE(ports.WasJustClosed(7, tick + 0x80000000U)) << tick;
  }
}

TEST(ClosedPortsTest, OpenedAgain_NoLongerCounts) {
  ClosedPorts ports;
  ports.NoteClosed(7, 1000);
  ports.NoteOpened(7);
  EXPECT_FALSE(ports.WasJustClosed(7, 1001));
}

TEST(ClosedPortsTest, EachPort_CountsForItself) {
  ClosedPorts ports;
  ports.NoteClosed(256, 1000);
  ports.NoteClosed(257, 1000);
  ports.NoteClosed(-1, 1000);
  for (const int port : {-32768, -1, 0, 1, 255, 257, 32767}) {
    EXPECT_FALSE(ports.WasJustClosed(static_cast<std::int16_t>(port), 1001)) << port;
  }
  EXPECT_TRUE(ports.WasJustClosed(256, 1001));
}

}  // namespace
}  // namespace kesp
