// What a description of a simulated bus says.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "simulator/gpib/call.h"
#include "simulator/personality.h"

namespace kesp::simulator::gpib {

// A call that is to fail: the one with that number since the bus was loaded, or each.
struct Failure {
  std::optional<CallName> call;    // any when left out
  std::optional<std::int32_t> at;  // the first is 1
  std::int32_t error = 0;
  std::optional<std::int32_t> status;  // the word to report, whatever its bits say
  std::int32_t count = 0;
  std::optional<std::int32_t> result;  // what the function returns
};

struct BusDescription {
  std::vector<Personality> devices;  // each has an address
  std::vector<Failure> failures;
  std::vector<std::int32_t> registration;  // results of the first registrations of threads
  bool secondary_offset_required = false;
  bool record = true;
};

// The bus that is there when no other was described: a temperature controller at address 5.
BusDescription BuiltInBus();

// A bus on which every call fails, for want of a description that can be used.
BusDescription UnusableBus();

}  // namespace kesp::simulator::gpib
