// One call of the driver on its way in, for the plan of failures and the record.
#include "simulator/gpib/call.h"

#include <algorithm>
#include <cstddef>

namespace kesp::simulator::gpib {

std::string_view NameOf(CallName call) {
  return kCallNames.at(static_cast<std::size_t>(call));
}

std::optional<CallName> CallNamed(std::string_view name) {
  const auto* const found = std::find(kCallNames.begin(), kCallNames.end(), name);
  if (found == kCallNames.end()) return std::nullopt;
  return static_cast<CallName>(found - kCallNames.begin());
}

}  // namespace kesp::simulator::gpib
