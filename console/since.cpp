// "--since": the moment from which the exchanges of a trace are wanted.
#include "console/since.h"

#include <optional>

#include "console/duration.h"
#include "console/usage_error.h"

namespace kesp::console {
namespace {

constexpr LocalSeconds kDay = LocalSeconds{24} * 60 * 60;

}  // namespace

LocalSeconds ReadSince(std::string_view text, LocalSeconds now, LocalSeconds last) {
  if (const std::optional<LocalSeconds> time = ReadIsoTime(text)) return *time;
  // A number alone is no time of day and no duration that anybody means.
  const bool has_unit = text.find_first_not_of("0123456789.") != std::string_view::npos;
  if (const std::optional<int> ago = ReadDuration(text); ago && has_unit) return now - *ago / 1000;
  const std::string clock =
      "1970-01-01 " + std::string(text.size() == 4 || text.size() == 7 ? "0" : "") + std::string(text);
  const bool is_clock = text.size() <= 8 && text.find(':') != std::string_view::npos;
  if (const std::optional<LocalSeconds> time = ReadIsoTime(clock); time && is_clock)
    return last - last % kDay + *time;
  throw UsageError("--since: \"" + std::string(text) +
                   R"(" is no time; 14:05, "2026-11-22 14:05:09" or 10min was expected)");
}

}  // namespace kesp::console
