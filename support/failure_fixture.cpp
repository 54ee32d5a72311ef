// How tests compare and print what a call raised.
#include "support/failure_fixture.h"

#include <gtest/gtest.h>

#include <tuple>

namespace kesp {

bool operator==(const Raised& left, const Raised& right) {
  return std::tie(left.number, left.source, left.description) ==
         std::tie(right.number, right.source, right.description);
}

std::ostream& operator<<(std::ostream& out, const Raised& raised) {
  return out << raised.number << " " << testing::PrintToString(raised.source) << " "
             << testing::PrintToString(raised.description);
}

Raised PartsOf(const Failure& failure) {
  return {failure.number(), failure.source(), failure.description()};
}

}  // namespace kesp
