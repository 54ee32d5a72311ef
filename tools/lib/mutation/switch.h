// Chooses one mutation of the product: the one whose number the variable KESP_MUTANT of the environment
// holds.
//
// Where KESP_MUTANTS_REACHED names a file, the number of each place that a process comes by is appended to it
// once.
#pragma once

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <type_traits>
#include <utility>

inline constexpr int kKespMostMutants = 10000;
inline std::atomic<bool> kesp_mutants_reached[kKespMostMutants];

inline int KespChosenMutant() {
  static const int chosen = [] {
    const char* number = std::getenv("KESP_MUTANT");
    return number == nullptr ? 0 : std::atoi(number);
  }();
  return chosen;
}

inline void KespNoteMutant(int number) noexcept {
  static const char* const path = std::getenv("KESP_MUTANTS_REACHED");
  if (path == nullptr) return;
  if (std::FILE* file = std::fopen(path, "ab")) {
    std::fprintf(file, "%d\n", number);
    std::fclose(file);
  }
}

inline bool kesp_mutant(int number) noexcept {
  if (!kesp_mutants_reached[number].exchange(true)) KespNoteMutant(number);
  return number == KespChosenMutant();
}

// The value, or under that mutation an empty one of its type.
template <typename Value>
Value kesp_emptied(int number, Value&& value) {
  if (kesp_mutant(number)) {
    if constexpr (std::is_reference_v<Value>) {
      static std::remove_cvref_t<Value> empty{};
      empty = std::remove_cvref_t<Value>{};
      return empty;
    } else {
      return std::remove_cv_t<Value>{};
    }
  }
  return static_cast<Value&&>(value);
}
