// The date and time in front of a line of a trace, in the form of some region.
#include "console/regional_time.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <string>

namespace kesp::console {
namespace {

constexpr std::size_t kMostGroups = 6;
constexpr LocalSeconds kDay = LocalSeconds{24} * 60 * 60;

// A run of digits.
struct Group {
  std::size_t begin = 0;
  std::size_t end = 0;
  int value = 0;
};

bool IsDigit(char character) {
  return character >= '0' && character <= '9';
}

// Nothing where a number is longer than a year, or where there are too many.
std::optional<std::vector<Group>> GroupsOf(std::string_view text) {
  constexpr std::size_t kLongest = 4;
  std::vector<Group> groups;
  for (std::size_t i = 0; i < text.size();) {
    if (!IsDigit(text[i])) {
      ++i;
      continue;
    }
    Group group{.begin = i};
    for (; i < text.size() && IsDigit(text[i]); ++i) {
      if (i - group.begin == kLongest) return std::nullopt;
      group.value = group.value * 10 + (text[i] - '0');
    }
    group.end = i;
    if (groups.size() == kMostGroups) return std::nullopt;
    groups.push_back(group);
  }
  return groups;
}

// How many of the last groups are the time: 3, 2, or 0.
std::size_t PartsOfTime(std::string_view text, const std::vector<Group>& groups) {
  const auto joined = [&](const Group& left, const Group& right) {
    const bool is_near = right.begin - left.end == 1 && right.end - right.begin == 2 && right.value < 60;
    return is_near && (text[left.end] == ':' || text[left.end] == '.');
  };
  const auto begins = [&](std::size_t place) {
    const Group& hour = groups[place];
    const std::size_t before = groups[place - 1].end;
    return hour.value < 24 && hour.end - hour.begin <= 2 &&
           text.substr(before, hour.begin - before).find(' ') != std::string_view::npos;
  };
  for (const std::size_t parts : {std::size_t{3}, std::size_t{2}}) {
    if (groups.size() < parts + 2) continue;
    const std::size_t first = groups.size() - parts;
    bool is_time = begins(first);
    for (std::size_t i = first; i + 1 < groups.size(); ++i)
      is_time = is_time && joined(groups[i], groups[i + 1]);
    if (is_time) return parts;
  }
  return 0;
}

enum class Half { kNone, kMorning, kAfternoon, kUnknown };

bool IsAscii(std::string_view text, std::size_t place) {
  return place >= text.size() || static_cast<unsigned char>(text[place]) < 0x80;
}

// The length of the no-break space, or the narrow one, at this place; 0 where there is none. In code pages of
// one byte a character it is the byte A0, which in others is a part of letters.
std::size_t NoBreakSpaceAt(std::string_view text, std::size_t place) {
  for (const std::string_view utf8 : {"\xC2\xA0", "\xE2\x80\xAF"})
    if (text.substr(place).starts_with(utf8)) return utf8.size();
  const bool stands_alone = text[place] == '\xA0' && IsAscii(text, place - 1) && IsAscii(text, place + 1);
  return stands_alone ? 1 : 0;
}

enum class Place { kBeforeTheTime, kBehindTheTime };

// Letters and bytes past ASCII, without the marks and spaces between them.
Half HalfOf(std::string_view text, Place place) {
  std::string word;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (const std::size_t space = NoBreakSpaceAt(text, i); space > 0) {
      i += space - 1;
      continue;
    }
    const auto byte = static_cast<unsigned char>(text[i]);
    if (std::isalpha(byte) != 0 || byte >= 0x80)
      word += static_cast<char>(byte < 0x80 ? std::tolower(byte) : byte);
  }
  if (word.empty()) return Half::kNone;
  struct Word {
    std::string_view text;
    Half half;
    bool is_only_behind = false;
  };
  // English and Spanish; Korean, Chinese, Japanese, Greek and Arabic, as UTF-8 and in the code pages of their
  // systems (that of traditional Chinese has letters among its bytes). The one byte of an Arabic word is a
  // letter of other languages, of which some put one between date and time.
  static constexpr Word kWords[] = {
      {"am", Half::kMorning},
      {"pm", Half::kAfternoon},
      {"\xEC\x98\xA4\xEC\xA0\x84", Half::kMorning},
      {"\xEC\x98\xA4\xED\x9B\x84", Half::kAfternoon},
      {"\xBF\xC0\xC0\xFC", Half::kMorning},
      {"\xBF\xC0\xC8\xC4", Half::kAfternoon},
      {"\xE4\xB8\x8A\xE5\x8D\x88", Half::kMorning},
      {"\xE4\xB8\x8B\xE5\x8D\x88", Half::kAfternoon},
      {"\xC9\xCF\xCE\xE7", Half::kMorning},
      {"\xCF\xC2\xCE\xE7", Half::kAfternoon},
      {"\xA4w\xA4\xC8", Half::kMorning},
      {"\xA4u\xA4\xC8", Half::kAfternoon},
      {"\xE5\x8D\x88\xE5\x89\x8D", Half::kMorning},
      {"\xE5\x8D\x88\xE5\xBE\x8C", Half::kAfternoon},
      {"\xCF\x80\xCE\xBC", Half::kMorning},
      {"\xCE\xBC\xCE\xBC", Half::kAfternoon},
      {"\xF0\xEC", Half::kMorning},
      {"\xEC\xEC", Half::kAfternoon},
      {"\xD8\xB5", Half::kMorning},
      {"\xD9\x85", Half::kAfternoon},
      {"\xD5", Half::kMorning, true},
      {"\xE3", Half::kAfternoon, true},
  };
  for (const Word& known : kWords) {
    const bool may_be_here = place == Place::kBehindTheTime || !known.is_only_behind;
    if (may_be_here && known.text == word) return known.half;
  }
  return Half::kUnknown;
}

void SetHalf(RegionalTime& time, Half half) {
  if (half == Half::kUnknown) time.half_known = false;
  if (half == Half::kAfternoon && time.hour < 12) time.hour += 12;
  if (half == Half::kMorning && time.hour == 12) time.hour = 0;
}

struct YearMonthDay {
  int year;
  int month;
  int day;
};

YearMonthDay InOrder(const std::array<int, 3>& date, DateOrder order) {
  switch (order) {
    case DateOrder::kYearFirst:
      return {date[0], date[1], date[2]};
    case DateOrder::kDayFirst:
      return {date[2], date[1], date[0]};
    default:
      return {date[2], date[0], date[1]};
  }
}

std::optional<LocalSeconds> SecondsOf(const YearMonthDay& date, int hour, int minute, int second) {
  int year = date.year < 100 ? date.year + 2000 : date.year;
  if (year > 2400) year -= 543;  // of the Thai calendar
  const std::chrono::year_month_day day{std::chrono::year(year),
                                        std::chrono::month(static_cast<unsigned>(date.month)),
                                        std::chrono::day(static_cast<unsigned>(date.day))};
  if (!day.ok()) return std::nullopt;
  const auto days = std::chrono::sys_days(day).time_since_epoch().count();
  return static_cast<LocalSeconds>(days) * kDay + LocalSeconds{hour} * 3600 + LocalSeconds{minute} * 60 +
         second;
}

// Whether all of them can be read so, in the order of time and not in the future.
bool Fits(const std::vector<RegionalTime>& times, DateOrder order, LocalSeconds now) {
  std::optional<LocalSeconds> before;
  for (const RegionalTime& time : times) {
    const std::optional<LocalSeconds> seconds = SecondsOf(time, order);
    // A clock that is put back goes back by an hour.
    if (!seconds || *seconds > now + kDay || (before && *seconds < *before - kDay)) return false;
    before = seconds;
  }
  return true;
}

}  // namespace

std::optional<RegionalTime> ReadRegionalTime(std::string_view text) {
  const std::optional<std::vector<Group>> groups = GroupsOf(text);
  if (!groups) return std::nullopt;
  const std::size_t parts = PartsOfTime(text, *groups);
  if (parts == 0) return std::nullopt;
  const std::size_t first = groups->size() - parts;
  if (first > 3) return std::nullopt;
  RegionalTime time;
  time.hour = (*groups)[first].value;
  time.minute = (*groups)[first + 1].value;
  time.second = parts == 3 ? (*groups)[first + 2].value : 0;
  if (first == 3) {
    time.date = {(*groups)[0].value, (*groups)[1].value, (*groups)[2].value};
    time.separator = text[(*groups)[0].end];
  }
  const std::size_t date_end = (*groups)[first - 1].end;
  const Half before = HalfOf(text.substr(date_end, (*groups)[first].begin - date_end), Place::kBeforeTheTime);
  const bool is_behind = before == Half::kNone;
  SetHalf(time, is_behind ? HalfOf(text.substr(groups->back().end), Place::kBehindTheTime) : before);
  return time;
}

DerivedOrder DeriveOrder(const std::vector<RegionalTime>& times, LocalSeconds now) {
  if (times.empty() || !times.front().date) return {};
  const RegionalTime& first = times.front();
  if ((*first.date)[0] > 31) return {DateOrder::kYearFirst, true};
  const bool fits_month_first = Fits(times, DateOrder::kMonthFirst, now);
  const bool fits_day_first = Fits(times, DateOrder::kDayFirst, now);
  if (fits_month_first != fits_day_first) {
    return {fits_day_first ? DateOrder::kDayFirst : DateOrder::kMonthFirst, true};
  }
  // No region has the month first in front of a point.
  if (first.separator == '.') return {DateOrder::kDayFirst, true};
  const bool is_the_same = std::all_of(times.begin(), times.end(), [](const RegionalTime& time) {
    return time.date && (*time.date)[0] == (*time.date)[1];
  });
  return {first.separator == '-' ? DateOrder::kDayFirst : DateOrder::kMonthFirst, is_the_same};
}

std::optional<LocalSeconds> SecondsOf(const RegionalTime& time, DateOrder order) {
  if (!time.date) return std::nullopt;
  return SecondsOf(InOrder(*time.date, order), time.hour, time.minute, time.second);
}

std::optional<LocalSeconds> ReadIsoTime(std::string_view text) {
  std::string full(text.substr(0, 19));
  if (full.size() == 10) full += " 00:00";
  const bool is_iso = full.size() >= 16 && full[4] == '-' && full[7] == '-' &&
                      (full[10] == ' ' || full[10] == 'T') &&
                      full.find_first_not_of("0123456789:-", 11) == std::string::npos;
  if (!is_iso) return std::nullopt;
  full[10] = ' ';
  const std::optional<RegionalTime> time = ReadRegionalTime(full);
  return time ? SecondsOf(*time, DateOrder::kYearFirst) : std::nullopt;
}

}  // namespace kesp::console
