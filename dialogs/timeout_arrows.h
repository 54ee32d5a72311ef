// The time-outs that the arrows of the dialogs allow, and how far one press of them goes; milliseconds.
#pragma once

#include <cstdint>

namespace kesp {

inline constexpr std::int32_t kShortestTimeout = 100;
inline constexpr std::int32_t kLongestTimeout = 10000;
inline constexpr std::int32_t kTimeoutStep = 100;

}  // namespace kesp
