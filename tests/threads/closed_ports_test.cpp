// The process's list of the COM ports that were just closed, used by many threads.
#include "serial/closed_ports.h"

#include <gtest/gtest.h>

#include "tests/threads/together.h"

namespace kesp::threads {
namespace {

constexpr std::uint32_t kNow = 1'000'001;

// Each thread has a port of its own, and all of them one in common, of which no answer can be known.
TEST(ClosedPortsThreadsTest, PortsOfManyThreads_AreKeptApart) {
  ClosedPorts ports;
  RunTogether(8, [&](int number) {
    const auto own = static_cast<std::int16_t>(number + 1);
    constexpr std::int16_t kShared = 200;
    for (int round = 0; round < Rounds(1000); ++round) {
      ports.NoteClosed(own, kNow);
      ports.NoteClosed(kShared, kNow);
      EXPECT_TRUE(ports.WasJustClosed(own, kNow + 100));
      ports.WasJustClosed(kShared, kNow + 100);
      ports.NoteOpened(own);
      ports.NoteOpened(kShared);
      EXPECT_FALSE(ports.WasJustClosed(own, kNow + 100));
    }
  });
}

}  // namespace
}  // namespace kesp::threads
