// When the exchanges of a trace began, for "--since".
#include "console/since_filter.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <vector>

#include "console/since.h"
#include "console/trace_line.h"

namespace kesp::console {
namespace {

// Enough for some lines at the beginning, and for the last line behind a logged arrival.
constexpr std::uint64_t kLook = 256U << 10U;

void AddTimes(FilePieces& file, std::uint64_t place, std::vector<RegionalTime>& times) {
  TraceLines lines;
  lines.Add(file.Read(place, kLook));
  std::string before;
  while (const auto line = lines.Last(TraceLines::Ending::kEnded)) {
    if (line->when == before) continue;
    before = line->when;
    if (const auto time = ReadRegionalTime(line->when)) times.push_back(*time);
  }
}

}  // namespace

SinceFilter::SinceFilter(const std::string& since, FilePieces& file, LocalSeconds now) {
  const std::uint64_t size = file.Size().value_or(0);
  std::vector<RegionalTime> times;
  AddTimes(file, 0, times);
  if (size > kLook) AddTimes(file, std::max(kLook, size - kLook), times);
  const DerivedOrder derived = DeriveOrder(times, now);
  order_ = derived.order;
  // A trace that is still empty, for --follow.
  const std::optional<LocalSeconds> last = times.empty() ? now : SecondsOf(times.back(), order_);
  if (!last)
    throw std::runtime_error("the dates of this trace cannot be read, so --since does not go with it");
  since_ = ReadSince(since, now, *last);
  if (!derived.certain && !times.empty()) {
    doubt_ = "the trace does not tell whether its dates have the day or the month first; taken for: the ";
    doubt_ += order_ == DateOrder::kDayFirst ? "day" : "month";
  }
  const auto unknown = [](const RegionalTime& time) { return !time.half_known; };
  if (std::any_of(times.begin(), times.end(), unknown)) {
    doubt_ += std::string(doubt_.empty() ? "" : "\n") +
              "the words for the halves of the day are not known; all times are taken for the morning";
  }
}

bool SinceFilter::Includes(const Exchange& exchange) {
  if (exchange.when == last_when_) return last_included_;
  last_when_ = exchange.when;
  const std::optional<RegionalTime> time = ReadRegionalTime(exchange.when);
  const std::optional<LocalSeconds> seconds = time ? SecondsOf(*time, order_) : std::nullopt;
  last_included_ = seconds && *seconds >= since_;
  return last_included_;
}

}  // namespace kesp::console
