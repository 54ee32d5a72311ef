// A request that cannot be carried out as it was put: the exit code is kExitUsage.
#pragma once

#include <stdexcept>

namespace kesp::console {

class UsageError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace kesp::console
