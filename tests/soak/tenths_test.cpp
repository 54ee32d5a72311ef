// What counts as grown, and how rows and figures read.
#include "tests/soak/tenths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kesp::soak {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<Tenth> TenTimes(const Resources& held) {
  return std::vector<Tenth>(kTenths, Tenth{.resources = held, .seconds = 2});
}

constexpr Resources kHeld{.handles = 57,
                          .runtime_blocks = 900,
                          .runtime_bytes = 70'000,
                          .system_blocks = 5000,
                          .system_bytes = 500'000,
                          .private_bytes = 3'000'000,
                          .gdi_objects = 24,
                          .user_objects = 3,
                          .threads = 4};

TEST(Tenths, TheSameInEach_IsFlat) {
  EXPECT_THAT(Grown(TenTimes(kHeld)), IsEmpty());
}

TEST(Tenths, GrowthOfTheFirst_IsWarmingUp) {
  std::vector<Tenth> tenths = TenTimes(kHeld);
  for (const ResourceKind& kind : kResourceKinds) tenths[0].resources.*kind.value = 0;
  EXPECT_THAT(Grown(tenths), IsEmpty());
}

TEST(Tenths, LessAtTheEnd_IsFlat) {
  std::vector<Tenth> tenths = TenTimes(kHeld);
  tenths.back().resources = {};
  EXPECT_THAT(Grown(tenths), IsEmpty());
}

TEST(Tenths, MoreThanTheAllowanceAtTheEnd_IsGrownForEachKind) {
  for (const ResourceKind& kind : kResourceKinds) {
    std::vector<Tenth> tenths = TenTimes(kHeld);
    tenths.back().resources.*kind.value += kind.allowance;
    EXPECT_THAT(Grown(tenths), IsEmpty()) << kind.name;
    ++(tenths.back().resources.*kind.value);
    EXPECT_EQ(Grown(tenths).size(), 1U) << kind.name;
  }
  std::vector<Tenth> tenths = TenTimes(kHeld);
  tenths.back().resources.handles = 58;
  EXPECT_THAT(Grown(tenths), ElementsAre("handles grew from 57 after the second tenth to 58 after the last"));
}

// A block lost in every thousandth call of a full run is seen.
TEST(Tenths, ALeakInEachThousandthQueryOfAMillion_IsGrown) {
  std::vector<Tenth> tenths = TenTimes(kHeld);
  for (int tenth = 0; tenth < kTenths; ++tenth) tenths[tenth].resources.runtime_blocks += tenth * 100;
  EXPECT_EQ(Grown(tenths).size(), 1U);
}

TEST(Tenths, WhatTheSystemLost_IsNoGrowthAndAFigure) {
  std::vector<Tenth> tenths = TenTimes(kHeld);
  tenths[1].lost_by_system.system_blocks = 100;
  tenths.back().lost_by_system.system_blocks = 1000;
  tenths.back().resources.system_blocks += 964;
  EXPECT_THAT(Grown(tenths), IsEmpty());
  ++tenths.back().resources.system_blocks;
  EXPECT_EQ(Grown(tenths).size(), 1U);
  EXPECT_THAT(Figures("dialogs", 1000, tenths),
              Contains("figure dialogs, blocks that the system lost by itself = 1000"));
}

TEST(Tenths, Row_StandsBelowItsHead) {
  EXPECT_EQ(
      TableHead(),
      "    tenth  handles  runtime       KB   system       KB  private      GDI     USER  threads  calls/s");
  EXPECT_EQ(
      TableRow(3, {.resources = kHeld, .seconds = 2}, 1000),
      "        3       57      900       68     5000      488     2929       24        3        4      500");
}

TEST(Tenths, Figures_NameThePart) {
  std::vector<Tenth> tenths = TenTimes(kHeld);
  tenths[0].resources.handles = 50;
  const std::vector<std::string> figures = Figures("queries over TCP", 1000, tenths);
  EXPECT_THAT(figures, Contains("figure queries over TCP = 1000 in 20 s"));
  EXPECT_THAT(figures,
              Contains("figure queries over TCP, handles after each tenth = 50 57 57 57 57 57 57 57 57 57"));
  for (const char* flat :
       {"blocks of the runtime's heap after each tenth = 900 each time",
        "private KB after each tenth = 2929 each time", "GDI objects after each tenth = 24 each time",
        "USER objects after each tenth = 3 each time"}) {
    EXPECT_THAT(figures, Contains(std::string("figure queries over TCP, ") + flat));
  }
}

}  // namespace
}  // namespace kesp::soak
