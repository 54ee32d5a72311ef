// A range of IPv4 addresses, for which one host stands.
#pragma once

#include <asio/ip/address_v4.hpp>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kesp::simulator {

// At least one and at most 65,536 addresses that follow each other.
struct AddressRange {
  asio::ip::address_v4 first;
  asio::ip::address_v4 last;

  std::size_t size() const { return std::size_t{last.to_uint()} - first.to_uint() + 1; }
  // The address with this index, counted from 0 and round again after the last.
  asio::ip::address_v4 At(std::size_t index) const;
  // "10.0.0.1-10.0.0.9", or "10.0.0.1" for a single one.
  std::string Text() const;
};

// Reads a text as Text gives it. Nothing when the text is anything else, the addresses are in the wrong
// order, or there are too many.
std::optional<AddressRange> ReadAddressRange(std::string_view text);

}  // namespace kesp::simulator
