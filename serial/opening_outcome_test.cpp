// Unit tests of what the system's errors at opening a COM port mean to callers.
#include "serial/opening_outcome.h"

#include <gtest/gtest.h>

namespace kesp {
namespace {

TEST(OpeningOutcomeTest, SystemError_DecidesAvailabilityAndTheErrorOfOpening) {
  struct Case {
    std::uint32_t system_error;
    std::int32_t availability;
    std::int32_t number;
  };
  constexpr Case kCases[] = {{2, 2, 8002},
                             {3, 2, 8002},
                             {55, 2, 8002},
                             {123, 2, 8002},
                             {433, 2, 8002},
                             {1167, 2, 8002},
                             {1617, 2, 8002},
                             {5, 5, 8005},
                             {32, 5, 8005},
                             // The device, the line, or the radio link behind the port does not answer.
                             {21, 5, 8012},
                             {22, 5, 8012},
                             {31, 5, 8012},
                             {121, 5, 8012},
                             {1117, 5, 8012},
                             // And any other.
                             {1, 5, 8012},
                             {87, 5, 8012},
                             {0xFFFFFFFF, 5, 8012}};
  for (const Case& c : kCases) {
    const OpeningOutcome outcome = OutcomeOfOpening(c.system_error);
    EXPECT_EQ(AvailabilityCode(outcome), c.availability) << c.system_error;
    EXPECT_EQ(OpenErrorNumber(outcome), c.number) << c.system_error;
  }
  EXPECT_EQ(AvailabilityCode(OutcomeOfOpening(0)), 0);
}

}  // namespace
}  // namespace kesp
