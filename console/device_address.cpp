// Addresses of one device.
#include "console/device_address.h"

#include "console/usage_error.h"

namespace kesp::console {
namespace {

bool HasPrecidia(const Address& address) {
  const auto* com = std::get_if<ComAddress>(&address);
  const auto* usb = std::get_if<UsbAddress>(&address);
  return (com != nullptr && com->line.precidia) || (usb != nullptr && usb->line.precidia);
}

}  // namespace

Address ParseDeviceAddress(std::string_view text) {
  Address address = ParseAddress(text);
  if (HasPrecidia(address)) {
    throw UsageError(
        "the library sends nothing to a controller of the kind \"precidia\", on purpose: leave "
        "\",precidia\" out");
  }
  const auto* gpib = std::get_if<GpibAddress>(&address);
  if (gpib != nullptr && !gpib->primary) {
    throw AddressError(text, std::string_view("gpib:").size(),
                       "expected here: a primary address: 1 to 30; \"kesp detect\" looks for one");
  }
  return address;
}

}  // namespace kesp::console
