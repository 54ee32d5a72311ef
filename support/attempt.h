// One call whose failure becomes a value instead of travelling on.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "support/failure.h"

namespace kesp {

// What an operation came to: its result, and the error when it raised one.
struct Attempt {
  bool succeeded = false;
  std::optional<Failure> error;

  // The error's number; 0 for an operation that returned false without an error.
  std::int32_t number() const { return error ? error->number() : 0; }
  std::wstring source() const { return error ? error->source() : std::wstring(); }
  std::wstring description() const { return error ? error->description() : std::wstring(); }
};

// Calls the operation and keeps what it throws, whatever that is.
template <class Operation>
Attempt Try(Operation&& operation) {
  try {
    return {.succeeded = std::forward<Operation>(operation)(), .error = std::nullopt};
  } catch (...) {
    return {.succeeded = false, .error = CurrentFailure()};
  }
}

}  // namespace kesp
