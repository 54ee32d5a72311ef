// The table that the benchmarks print.
#pragma once

#include <cstdio>
#include <string>

#include "bench/measure.h"

namespace kesp::bench {

// The unit is that of all figures but the ratio.
inline void PrintHeading(const std::string& unit = "us") {
  std::printf("%-56s %12s %12s %8s %12s\n", "what", ("library " + unit).c_str(), ("bare " + unit).c_str(),
              "ratio", ("added " + unit).c_str());
}

inline void Print(const std::string& what, const Pair& pair) {
  std::printf("%-56s %12.2f %12.2f %8.2f %12.2f\n", what.c_str(), pair.library, pair.bare,
              pair.library / pair.bare, pair.library - pair.bare);
  std::fflush(stdout);
}

// A row without a bare side.
inline void Print(const std::string& what, double library) {
  std::printf("%-56s %12.2f\n", what.c_str(), library);
  std::fflush(stdout);
}

}  // namespace kesp::bench
