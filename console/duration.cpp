// Durations as users write them.
#include "console/duration.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace kesp::console {
namespace {

struct Unit {
  std::string_view name;
  double milliseconds;
};

constexpr Unit kUnits[] = {{"", 1}, {"ms", 1}, {"s", 1'000}, {"min", 60'000}, {"h", 3'600'000}};

}  // namespace

std::optional<int> ReadDuration(std::string_view text) {
  double number = 0;
  const auto [end, error] =
      std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
  if (error != std::errc() || number < 0) return std::nullopt;
  const std::string_view name = text.substr(static_cast<std::size_t>(end - text.data()));
  for (const Unit& unit : kUnits) {
    if (unit.name != name) continue;
    const double milliseconds = std::round(number * unit.milliseconds);
    if (!(milliseconds <= std::numeric_limits<int>::max())) return std::nullopt;
    return static_cast<int>(milliseconds);
  }
  return std::nullopt;
}

}  // namespace kesp::console
