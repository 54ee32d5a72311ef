// Durations as users write them.
#include "console/duration.h"

#include <gtest/gtest.h>

namespace kesp::console {
namespace {

TEST(ReadDuration, NumbersWithUnits_AreMilliseconds) {
  const std::pair<const char*, int> cases[] = {
      {"0", 0},          {"250", 250},      {"250ms", 250}, {"1.5s", 1500},
      {"2min", 120'000}, {"1h", 3'600'000}, {"0.4", 0},     {"2147483647", 2147483647}};
  for (const auto& [text, milliseconds] : cases) EXPECT_EQ(ReadDuration(text), milliseconds) << text;
}

TEST(ReadDuration, AnythingElse_IsNone) {
  for (const char* text : {"", "s", "1 s", "1S", "-1", "1e3", "nan", "inf", "1m", "2147483648", "1,5s"})
    EXPECT_EQ(ReadDuration(text), std::nullopt) << text;
}

}  // namespace
}  // namespace kesp::console
