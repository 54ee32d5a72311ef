// The time of day of the clock that stands still.
#include "console/clock_fake.h"

#include <array>
#include <cstdio>

namespace kesp::console {
namespace {

using std::chrono::days;
using std::chrono::floor;
using std::chrono::milliseconds;
using std::chrono::sys_days;

constexpr auto kFirst =
    sys_days{std::chrono::year{2026} / 11 / 22} + std::chrono::hours{14} + std::chrono::seconds{5 * 60 + 9};

}  // namespace

std::string ClockFake::LocalTime() {
  const auto now = kFirst + floor<milliseconds>(elapsed_);
  const auto day = floor<days>(now);
  const std::chrono::year_month_day date{day};
  const std::chrono::hh_mm_ss time{now - day};
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%03d", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                static_cast<int>(time.seconds().count()), static_cast<int>(time.subseconds().count()));
  return text.data();
}

void ClockFake::Sleep(milliseconds duration) {
  sleeps.push_back(duration);
  Advance(duration);
  if (on_sleep) on_sleep();
}

}  // namespace kesp::console
