// What a call raised, in a form that tests can compare and print.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "support/failure.h"

namespace kesp {

// A failure's three parts; number 0 for none.
struct Raised {
  std::int32_t number = 0;
  std::wstring source;
  std::wstring description;

  friend bool operator==(const Raised& left, const Raised& right);
  friend std::ostream& operator<<(std::ostream& out, const Raised& raised);
};

Raised PartsOf(const Failure& failure);

// What the call raised; number 0 when nothing.
template <typename Call>
Raised RaisedBy(const Call& call) {
  try {
    call();
  } catch (const Failure& failure) {
    return PartsOf(failure);
  }
  return {};
}

}  // namespace kesp
