// Durations as users write them.
#pragma once

#include <optional>
#include <string_view>

namespace kesp::console {

// "250", "250ms", "1.5s", "2min", "1h" in milliseconds; nothing for what is none of these, is negative, or is
// longer than a 32-bit number tells.
std::optional<int> ReadDuration(std::string_view text);

}  // namespace kesp::console
