// The message of a mistake in an address.
#include "console/address.h"

namespace kesp::console {

AddressError::AddressError(std::string_view address, std::size_t place, const std::string& expected)
    : std::runtime_error("  " + std::string(address) + "\n  " + std::string(place, ' ') + "^\n  " + expected),
      place_(place) {}

}  // namespace kesp::console
