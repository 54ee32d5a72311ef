// The makers of common USB adapters, and their chips.
#pragma once

#include <string>
#include <string_view>

namespace kesp::console {

struct UsbChip {
  std::string vendor;   // empty: not known here
  std::string product;  // empty: not known here
};

// usb_id: "0403:6001", in upper case.
UsbChip ChipOf(std::string_view usb_id);

}  // namespace kesp::console
