// Discovery on a network with a thousand instruments, and another one behind a second adapter.
#include "tests/clients/discovery_fixture.h"

namespace kesp::clients {
namespace {

class DiscoveryOfManyTest : public DiscoveryFixture {};

TEST_F(DiscoveryOfManyTest, AllOfTheFirstNetworkAreFoundAndAsked) {
  EXPECT_TRUE(Discover());
  const Lines found = SortedDevices();
  Lines expected;
  for (int number = 0; number < 1000; ++number) {
    expected.push_back(L"10.88." + std::to_wstring(4 + (number + 1) / 256) + L"." +
                       std::to_wstring((number + 1) % 256) + L"/7100/NET00011");
  }
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(found, expected);
  ExpectRestored();
  // Two seconds for the answers, and a twentieth of one for each that is asked, on a busy machine.
  EXPECT_LT(elapsed_, 2000U + 50000U);
}

}  // namespace
}  // namespace kesp::clients
