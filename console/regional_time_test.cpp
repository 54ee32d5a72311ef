// Dates and times of many regions, and "--since".
#include "console/regional_time.h"

#include <gtest/gtest.h>

#include "console/since.h"
#include "console/usage_error.h"

namespace kesp::console {
namespace {

LocalSeconds At(const char* text) {
  return ReadIsoTime(text).value();
}

LocalSeconds Derived(const char* text) {
  const auto time = ReadRegionalTime(text);
  EXPECT_TRUE(time) << text;
  if (!time) return 0;
  const DerivedOrder order = DeriveOrder({*time}, At("2026-12-31"));
  EXPECT_TRUE(order.certain) << text;
  EXPECT_TRUE(time->half_known) << text;
  return SecondsOf(*time, order.order).value_or(0);
}

TEST(ReadRegionalTime, FormsOfRegions_AreTheSameMoment) {
  for (const char* text : {"11/22/2026 1:05:09 PM",
                           "22.11.2026 13:05:09",
                           "22/11/2026 13:05:09",
                           "2026/11/22 13:05:09",
                           "2026-11-22 13:05:09",
                           "22-11-2026 13:05:09",
                           "22.11.2026 13.05.09",
                           "22/11/26 13:05:09",
                           "2026. 11. 22. 13:05:09",
                           "22. 11. 2026 13:05:09",
                           "22/11/2569 13:05:09",
                           "22/11/2026 01:05:09 p. m.",
                           "22/11/2026 01:05:09 p.\xA0m.",
                           "22/11/2026 01:05:09\xC2\xA0p.\xC2\xA0m.",
                           "11/22/2026 1:05:09\xE2\x80\xAFPM",
                           "11/22/2026 1:05:09\xA0PM",
                           "2026-11-22 \xBF\xC0\xC8\xC4 1:05:09",
                           "2026-11-22 \xEC\x98\xA4\xED\x9B\x84 1:05:09",
                           "2026/11/22 \xA4U\xA4\xC8 01:05:09",
                           "22\xFE/11\xFE/2026 1:05:09 \xE3",
                           "22/11/2026 1:05:09 \xD9\x85"}) {
    EXPECT_EQ(Derived(text), At("2026-11-22 13:05:09")) << text;
  }
  EXPECT_EQ(Derived("11/22/2026 12:00:00 AM"), At("2026-11-22"));
  EXPECT_EQ(Derived("11/22/2026 12:00:00 PM"), At("2026-11-22 12:00"));
}

TEST(ReadRegionalTime, WhatIsNone_IsRefused) {
  for (const char* text : {"", "1.0", "1.0 2.0 3.0", "13:05:09", "11/22/2026", "11/22/2026 25:00:00",
                           "11/22/2026 1:5:9", "192.168.100.101 12:30:00 1", "11/22/2026 1:05:99",
                           "20261122 13:05:09", "22.11.99999999999999999999 13:05:09"}) {
    EXPECT_FALSE(ReadRegionalTime(text)) << text;
  }
}

TEST(ReadRegionalTime, MonthAsAWord_IsATimeWithoutADate) {
  const auto time = ReadRegionalTime("22-Nov-26 13:05:09");
  ASSERT_TRUE(time);
  EXPECT_FALSE(SecondsOf(*time, DateOrder::kDayFirst));
}

TEST(ReadRegionalTime, ArabicMorning_IsTheMorning) {
  EXPECT_EQ(Derived("22\xFE/11\xFE/2026 12:00:00 \xD5"), At("2026-11-22"));
  EXPECT_EQ(Derived("22/11/2026 12:00:00 \xD8\xB5"), At("2026-11-22"));
}

TEST(ReadRegionalTime, UnknownWordForTheHalfOfTheDay_IsTold) {
  // The same byte as in Arabic; here it means a year.
  EXPECT_FALSE(ReadRegionalTime("22.11.2026 \xE3. 1:05:09")->half_known);
  EXPECT_FALSE(ReadRegionalTime("22/11/2026 1:05:09 xx")->half_known);
}

struct OrderCase {
  std::vector<const char*> times;
  const char* now;
  DateOrder order;
  bool certain;
};

TEST(DeriveOrder, IsFoundWhereTheDatesTell) {
  const OrderCase cases[] = {
      {{"11/12/2026 13:00:00"}, "2026-12-31", DateOrder::kMonthFirst, false},
      // The eleventh of December is still to come.
      {{"11/12/2026 13:00:00"}, "2026-11-22", DateOrder::kMonthFirst, true},
      {{"12/11/2026 13:00:00"}, "2026-11-22", DateOrder::kDayFirst, true},
      {{"11/12/2026 13:00:00", "13/12/2026 13:00:00"}, "2027-11-22", DateOrder::kDayFirst, true},
      {{"12/10/2025 13:00:00", "01/11/2025 13:00:00"}, "2027-11-22", DateOrder::kDayFirst, true},
      {{"10.11.2026 13:00:00"}, "2027-11-22", DateOrder::kDayFirst, true},
      {{"11/11/2026 13:00:00"}, "2027-11-22", DateOrder::kMonthFirst, true},
  };
  for (const OrderCase& one : cases) {
    std::vector<RegionalTime> times;
    for (const char* text : one.times) times.push_back(*ReadRegionalTime(text));
    const DerivedOrder derived = DeriveOrder(times, At(one.now));
    EXPECT_EQ(derived.order, one.order) << one.times.front() << " " << one.now;
    EXPECT_EQ(derived.certain, one.certain) << one.times.front() << " " << one.now;
  }
}

TEST(ReadSince, Forms) {
  const LocalSeconds now = At("2026-11-22 14:05:09");
  const LocalSeconds last = At("2026-11-20 16:00");
  const std::pair<const char*, const char*> cases[] = {
      {"9:05", "2026-11-20 09:05"},
      {"14:05:09", "2026-11-20 14:05:09"},
      {"2026-11-19", "2026-11-19"},
      {"2026-11-19 08:30", "2026-11-19 08:30"},
      {"2026-11-19T08:30:01", "2026-11-19 08:30:01"},
      {"10min", "2026-11-22 13:55:09"},
      {"2h", "2026-11-22 12:05:09"},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(ReadSince(text, now, last), At(expected)) << text;
  for (const char* text : {"", "10", "yesterday", "25:00", "14:5", "2026-13-01", "22.11.2026", "14:05x"}) {
    EXPECT_THROW(ReadSince(text, now, last), UsageError) << text;
  }
}

}  // namespace
}  // namespace kesp::console
