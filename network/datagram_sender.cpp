// The dotted form of an IPv4 address.
#include "network/datagram_sender.h"

namespace kesp {

std::wstring DatagramSender::AddressText() const {
  std::wstring text;
  for (int shift = 24; shift >= 0; shift -= 8) {
    if (!text.empty()) text += L'.';
    text += std::to_wstring(address >> shift & 0xFF);
  }
  return text;
}

}  // namespace kesp
