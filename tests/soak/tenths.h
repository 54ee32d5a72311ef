// The readings of a long run, one after each tenth, and the judgement whether anything grew.
#pragma once

#include <string>
#include <vector>

#include "tests/soak/resources.h"

namespace kesp::soak {

inline constexpr int kTenths = 10;

// One row of the table.
struct Tenth {
  Resources resources;
  Resources lost_by_system = {};  // of these, see Part
  double seconds = 0;             // that it took
};

// The head of the table, and the row of that number (from 1) with the rate of its calls.
std::string TableHead();
std::string TableRow(int number, const Tenth& tenth, long calls);

// A sentence for each kind of resource that is higher after the last tenth than after the second, by more
// than its allowance. The first tenth is for warming up. Empty where everything is flat. Takes ten tenths.
std::vector<std::string> Grown(const std::vector<Tenth>& tenths);

// The lines "figure KEY = VALUE" of the run of that part. Takes ten tenths.
std::vector<std::string> Figures(const std::string& part, long calls, const std::vector<Tenth>& tenths);

}  // namespace kesp::soak
