// Discovery among instruments that answer late, twice, wrongly, too much or not at all.
#include "tests/clients/discovery_fixture.h"

namespace kesp::clients {
namespace {

class DiscoveryFaultsTest : public DiscoveryStage {};

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

TEST_F(DiscoveryFaultsTest, Again_WhatWasReadBeforeIsKept) {
  EXPECT_TRUE(Discover());
  for (long index = 1; index <= Count(); ++index) {
    const ComPtr<_CInstrument> item = Item(index);
    if (!Read(item, &_CInstrument::get_Model).empty()) continue;
    EXPECT_EQ(Write(item, &_CInstrument::put_Model, L"kept"), S_OK);
    EXPECT_EQ(Write(item, &_CInstrument::put_Serial, L"too"), S_OK);
  }
  EXPECT_TRUE(Discover());
  EXPECT_EQ(SortedDevices(),
            (Lines{L"10.88.0.11/7100/NET00011", L"10.88.0.14/7100/NET00103", L"10.88.0.16/7100/NET00106",
                   L"10.88.0.17/kept/too", L"10.88.0.18/kept/too", L"10.88.0.19/7100/NET00107",
                   L"10.88.0.20/kept/too", L"10.88.0.21/kept/too", L"10.88.0.22/kept/too",
                   L"10.88.0.23/kept/too", L"10.88.0.24/7300/NET00033"}));
}

// On a network where instruments answer every second search, twice, without the mark and late.
class DiscoveryOddAnswersTest : public DiscoveryStage {};

TEST_F(DiscoveryOddAnswersTest, SecondSearch_AddsTheNewSenderOnly) {
  StartLog();
  EXPECT_TRUE(Discover());
  EXPECT_EQ(SortedDevices(), (Lines{L"10.88.0.11/7100/NET00011", L"10.88.0.13/7100/NET00103"}));
  EXPECT_EQ(LogLines(L"Duplicate"), (Lines{L"Duplicate device: 10.88.0.13"}));
  EXPECT_EQ(LogLines(L"Receiving from 10.88.0.14:30718").size(), 3U);
  EXPECT_EQ(LogLines(L"Receiving from 10.88.0.15:30718").size(), 0U);
  const ComPtr<_CInstrument> first = Item(1);
  const Lines before = Devices();
  EXPECT_TRUE(Discover());
  EXPECT_EQ(SortedDevices(),
            (Lines{L"10.88.0.11/7100/NET00011", L"10.88.0.12/7100/NET00104", L"10.88.0.13/7100/NET00103"}));
  // Behind those that were there.
  EXPECT_EQ(Devices()[0], before[0]);
  EXPECT_EQ(Devices()[1], before[1]);
  EXPECT_TRUE(IsSameObject(Item(1).Get(), first.Get()));
  EXPECT_EQ(LogLines(L"UDP"), (Lines{L"UDP discovery successful. Found 2 devices.",
                                     L"UDP discovery successful. Found 3 devices."}));
}

// On a network with a thousand instruments, and another one behind a second adapter.
class DiscoveryOfManyTest : public DiscoveryStage {};

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

// On a network where nobody answers.
class DiscoveryOfNobodyTest : public DiscoveryStage {};

TEST_F(DiscoveryOfNobodyTest, NothingIsFoundAfterOneToTwoSeconds) {
  StartLog();
  EXPECT_FALSE(Discover());
  EXPECT_EQ(Count(), 0);
  EXPECT_GE(elapsed_, 1000U);
  EXPECT_LT(elapsed_, 2000U + 3000U);
  EXPECT_EQ(Read(tcp_, &_CKespTCP::get_IPAddress), L"10.88.255.254");
  EXPECT_EQ(Read(tcp_, &_CKespTCP::get_Port), 1234);
  EXPECT_EQ(LogLines(L"UDP"), Lines{});
  ExpectRestored();
}

// On a network with floods of answers, one of them with a thousand senders, of which every second one has the
// mark.
class DiscoveryStormTest : public DiscoveryStage {};

TEST_F(DiscoveryStormTest, Search_EndsInTimeAndFindsTheOthers) {
  const Lines others = {L"10.88.0.11/7300/NET00033", L"10.88.0.12/7100/NET00109"};
  const auto is_forged = [](const std::wstring& device) {
    return device.starts_with(L"10.88.4.") || device.starts_with(L"10.88.5.") ||
           device.starts_with(L"10.88.6.") || device.starts_with(L"10.88.7.");
  };
  Lines found;
  // An answer that comes while the system's buffer is full is lost, as on any machine: whoever misses
  // somebody searches again.
  for (int search = 0; search < 3 && found != others; ++search) {
    EXPECT_TRUE(Discover());
    EXPECT_LT(elapsed_, 2000U + 10000U);
    ExpectRestored();
    found = SortedDevices();
    // As many as the system's buffer took.
    EXPECT_GT(std::erase_if(found, is_forged), 0U);
  }
  EXPECT_EQ(found, others);
  EXPECT_LE(Count(), 502);
}

}  // namespace
}  // namespace kesp::clients
