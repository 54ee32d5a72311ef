// Timeouts within the ranges of the transports.
#include "console/timeouts.h"

#include <limits>
#include <string>

#include "console/usage_error.h"

namespace kesp::console {
namespace {

// 10 us, 30 us, 100 us and so on, from code 1.
constexpr double kIeeeMilliseconds[] = {0.01, 0.03, 0.1,  0.3,   1,     3,      10,     30,       100,
                                        300,  1000, 3000, 10000, 30000, 100000, 300000, 1'000'000};

}  // namespace

short TcpTimeout(int milliseconds) {
  constexpr short kLongest = std::numeric_limits<short>::max();
  if (milliseconds > kLongest) {
    throw UsageError("over TCP/IP the longest timeout is " + std::to_string(kLongest) + " ms, not " +
                     std::to_string(milliseconds) + " ms");
  }
  return static_cast<short>(milliseconds);
}

int IeeeTimeoutCode(int milliseconds) {
  int code = 1;
  for (const double each : kIeeeMilliseconds) {
    if (each >= milliseconds) return code;
    ++code;
  }
  throw UsageError("on the GPIB the longest timeout is 1000 s, not " + std::to_string(milliseconds) + " ms");
}

}  // namespace kesp::console
