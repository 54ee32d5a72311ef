// The table of socket error descriptions.
#include "network/socket_errors.h"

#include <algorithm>
#include <array>

namespace kesp {

namespace {

constexpr wchar_t kSource[] = L"KespWinsock";

struct Text {
  std::int32_t number;
  const wchar_t* description;
};

constexpr std::array kTexts{
    Text{10004, L"The operation is canceled"},
    Text{10013, L"Permission denied"},
    Text{10014, L"The requested address is a broadcast address, but flag is not set"},
    Text{10022, L"Invalid argument"},
    Text{10024, L"No more socket descriptors are available"},
    Text{10035, L"Socket is non-blocking and the specified operation will block"},
    Text{10036, L"A blocking Winsock operation in progress"},
    Text{10037, L"The operation is completed. No blocking operation in progress"},
    Text{10038, L"The descriptor is not a socket"},
    Text{10039, L"Destination address is required"},
    Text{10040, L"The datagram is too large to fit into the buffer and is truncated"},
    Text{10043, L"The specified port is not supported"},
    Text{10047, L"Address family is not supported"},
    Text{10048, L"Address in use"},
    Text{10049, L"Address not available from the local machine"},
    Text{10050, L"Network subsystem failed"},
    Text{10051, L"The network cannot be reached from this host at this time"},
    Text{10052, L"Connection has timed out when SO_KEEPALIVE is set"},
    Text{10053, L"Connection is aborted due to timeout or other failure"},
    Text{10054, L"The connection is reset by remote side"},
    Text{kSocketNoBufferSpace, L"No buffer space is available"},
    Text{10056, L"Socket is already connected"},
    Text{10057, L"Socket is not connected"},
    Text{10058, L"Socket has been shut down"},
    Text{10060, L"The attempt to connect timed out"},
    Text{10061, L"Connection is forcefully rejected"},
    Text{10064, L"Host is down"},
    Text{10065, L"The host cannot be reached from this host at this time"},
    Text{10067, L"Too many processes use Winsock"},
    Text{10091, L"Network subsystem is not usable"},
    Text{10092, L"The version of Winsock is not supported"},
    Text{10093, L"Winsock is not initialized"},
    Text{11001, L"Authoritative answer: Host not found"},
    Text{11002, L"Non-Authoritative answer: Host not found"},
    Text{11003, L"Non-recoverable errors"},
    Text{11004, L"Valid name, no data record of requested type"},
    Text{kSocketBadState, L"Wrong protocol or connection state for the requested transaction or request"},
    Text{kSocketInvalidArgument,
         L"The argument passed to a function was not in the correct format or in the specified range"},
    Text{40017, L"Successful"},
    Text{40018, L"Unsupported variant type"},
    Text{40020, L"Invalid operation at current state"},
    Text{40021, L"Argument is out of range"},
    Text{40026, L"Wrong protocol for the requested transaction or request"},
};

}  // namespace

std::wstring SocketErrorDescription(std::int32_t number) {
  const auto* const found = std::find_if(kTexts.begin(), kTexts.end(),
                                         [number](const Text& text) { return text.number == number; });
  return found != kTexts.end() ? found->description : L"Socket error " + std::to_wstring(number);
}

Failure SocketFailure(std::int32_t number) {
  return {number, kSource, SocketErrorDescription(number)};
}

SocketError SocketErrorNotification(std::int32_t number) {
  SocketError error;
  error.number = static_cast<std::int16_t>(number);
  error.description = SocketErrorDescription(number);
  error.scode = static_cast<std::int32_t>(0x800A0000U | (static_cast<std::uint32_t>(number) & 0xFFFFU));
  error.source = kSource;
  return error;
}

}  // namespace kesp
