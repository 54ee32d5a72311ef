// Discovery among instruments that answer late, twice, wrongly, too much or not at all.
#include "tests/clients/discovery_fixture.h"

namespace kesp::clients {
namespace {

class DiscoveryFaultsTest : public DiscoveryFixture {};

TEST_F(DiscoveryFaultsTest, OnlyTheFaultyOnesAreSkipped) {
  EXPECT_TRUE(Discover());
  // Neither the silent (.12), the late (.13) nor the one without the mark (.15).
  EXPECT_EQ(SortedDevices(),
            (Lines{L"10.88.0.11/7100/NET00011", L"10.88.0.14/7100/NET00103", L"10.88.0.16/7100/NET00106",
                   L"10.88.0.17//", L"10.88.0.18//", L"10.88.0.19/7100/NET00107", L"10.88.0.20//",
                   L"10.88.0.21//", L"10.88.0.22//", L"10.88.0.23//", L"10.88.0.24/7300/NET00033"}));
  ExpectRestored();
  EXPECT_EQ(recorder_->Count(L"ReadInvalidChars"), 1U);
  // Two seconds for the answers and for each of the endless, the mute and the refusing one; five for a busy
  // machine.
  EXPECT_LT(elapsed_, 2000U + 3U * 2000U + 5000U);
}

}  // namespace
}  // namespace kesp::clients
