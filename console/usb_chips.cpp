// Vendor and product numbers as the makers have them from the USB Implementers Forum.
#include "console/usb_chips.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace kesp::console {
namespace {

using Entry = std::pair<std::string_view, std::string_view>;

constexpr Entry kVendors[] = {
    {"0403", "FTDI"},     {"0483", "STMicroelectronics"},
    {"04B4", "Cypress"},  {"04D8", "Microchip"},
    {"04E2", "Exar"},     {"0557", "ATEN"},
    {"067B", "Prolific"}, {"10C4", "Silicon Labs"},
    {"110A", "Moxa"},     {"1A86", "WCH"},
    {"2341", "Arduino"},  {"2E8A", "Raspberry Pi"},
    {"9710", "MosChip"},
};

constexpr Entry kProducts[] = {
    {"0403:6001", "FT232R"}, {"0403:6010", "FT2232"}, {"0403:6011", "FT4232"},  {"0403:6014", "FT232H"},
    {"0403:6015", "FT-X"},   {"04D8:000A", "CDC"},    {"04D8:00DF", "MCP2200"}, {"067B:2303", "PL2303"},
    {"067B:23A3", "PL2303"}, {"10C4:EA60", "CP210x"}, {"10C4:EA70", "CP2105"},  {"10C4:EA71", "CP2108"},
    {"1A86:5523", "CH341"},  {"1A86:7523", "CH340"},  {"9710:7840", "MCS7840"},
};

template <class Entries>
std::string Find(const Entries& entries, std::string_view key) {
  const auto found = std::find_if(std::begin(entries), std::end(entries),
                                  [key](const Entry& each) { return each.first == key; });
  return found == std::end(entries) ? "" : std::string(found->second);
}

}  // namespace

UsbChip ChipOf(std::string_view usb_id) {
  return {Find(kVendors, usb_id.substr(0, 4)), Find(kProducts, usb_id)};
}

}  // namespace kesp::console
