// Addresses of one device.
#include "console/device_address.h"

namespace kesp::console {

Address ParseDeviceAddress(std::string_view text) {
  Address address = ParseAddress(text);
  const auto* gpib = std::get_if<GpibAddress>(&address);
  if (gpib != nullptr && !gpib->primary)
    throw AddressError(text, std::string_view("gpib:").size(),
                       "expected here: a primary address: 1 to 30; \"kesp detect\" looks for one");
  return address;
}

}  // namespace kesp::console
