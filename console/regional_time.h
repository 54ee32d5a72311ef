// The date and time in front of a line of a trace, in the form of some region: "11/22/2026 6:54:30 AM",
// "22.11.2026 06:54:30".
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace kesp::console {

struct RegionalTime {
  // The numbers of the date in their order. Nothing where the month is a word.
  std::optional<std::array<int, 3>> date;
  char separator = 0;  // between the first two of them
  int hour = 0;        // of 24
  int minute = 0;
  int second = 0;
  bool half_known = true;  // false: there is a word for the half of the day that is not known here
};

// Nothing for what is no date and time.
std::optional<RegionalTime> ReadRegionalTime(std::string_view text);

enum class DateOrder { kYearFirst, kDayFirst, kMonthFirst };

struct DerivedOrder {
  DateOrder order = DateOrder::kMonthFirst;
  bool certain = false;
};

// Seconds of local time since the beginning of 1970, as if no clock were ever put forward or back.
using LocalSeconds = std::int64_t;

// In which order the numbers of these dates stand. They come one after the other, and none lies more than a
// day after `now`.
DerivedOrder DeriveOrder(const std::vector<RegionalTime>& times, LocalSeconds now);

// Nothing where the date is not known, or is none in this order.
std::optional<LocalSeconds> SecondsOf(const RegionalTime& time, DateOrder order);

// The form of Clock::LocalTime, of which the time may be left out: "2026-11-22", "2026-11-22 14:05",
// "2026-11-22T14:05:09.123".
std::optional<LocalSeconds> ReadIsoTime(std::string_view text);

}  // namespace kesp::console
