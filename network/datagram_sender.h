// Where a datagram came from.
#pragma once

#include <cstdint>
#include <string>

namespace kesp {

struct DatagramSender {
  std::uint32_t address = 0;  // IPv4, as a number: 10.0.0.7 is 0x0A000007
  std::uint16_t port = 0;

  // The address in dotted form, "10.0.0.7".
  std::wstring AddressText() const;
};

}  // namespace kesp
