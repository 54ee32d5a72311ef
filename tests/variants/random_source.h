// Random choices that a seed and a number repeat.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace kesp::variants {

// The numbers of one case. A copy makes the same choices once more.
class RandomSource {
 public:
  RandomSource(std::uint64_t seed, std::uint64_t number)
      : state_(seed * 0x9E3779B97F4A7C15u + number * 0xD1B54A32D192ED03u) {
    Next();
  }

  // The generator "splitmix64".
  std::uint64_t Next() {
    std::uint64_t z = state_ += 0x9E3779B97F4A7C15u;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
  }
  // From 0 up to, and not, the limit.
  unsigned Below(std::size_t limit) { return static_cast<unsigned>(Next() % limit); }
  bool OneIn(unsigned times) { return Below(times) == 0; }

  template <class List>
  const auto& Pick(const List& list) {
    return *(std::begin(list) + Below(std::size(list)));
  }

 private:
  std::uint64_t state_;
};

}  // namespace kesp::variants
