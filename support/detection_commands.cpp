// The identification commands by level.
#include "support/detection_commands.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace kesp {

std::span<const wchar_t* const> DetectionCommands(EDetectLevel level) {
  // A level is the number of commands that count.
  static constexpr std::array<const wchar_t*, 3> kCommands{L"*IDN?", L"*VER", L"t"};
  if (level < EDetectLevel::dlSCPIOnly) return {};
  return std::span(kCommands).first(std::min(static_cast<std::size_t>(level), kCommands.size()));
}

}  // namespace kesp
