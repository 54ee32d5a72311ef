// Tells which case a program was at when it crashed or got stuck.
#pragma once

#include <cstdint>

namespace kesp::variants {

// How such a program ends.
inline constexpr int kCrashed = 70;
inline constexpr int kStuck = 71;

// From now on a crash, or a case that takes longer than half a minute, prints the case and ends the program.
void WatchCases();

// To be called at the beginning of each case.
void NoteCase(std::uint64_t number);

}  // namespace kesp::variants
