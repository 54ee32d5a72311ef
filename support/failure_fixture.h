// What a call raised, in a form that tests can compare and print.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string>

#include "support/failure.h"

namespace kesp {

// A failure's three parts; number 0 for none.
struct Raised {
  std::int32_t number = 0;
  std::wstring source;
  std::wstring description;

  friend bool operator==(const Raised&, const Raised&) = default;
  friend std::ostream& operator<<(std::ostream& out, const Raised& raised) {
    return out << raised.number << " " << testing::PrintToString(raised.source) << " "
               << testing::PrintToString(raised.description);
  }
};

// What the call raised; number 0 when nothing.
template <typename Call>
Raised RaisedBy(const Call& call) {
  try {
    call();
  } catch (const Failure& failure) {
    return {failure.number(), failure.source(), failure.description()};
  }
  return {};
}

}  // namespace kesp
