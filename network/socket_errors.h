// What the socket's error numbers mean, in words.
#pragma once

#include <cstdint>
#include <string>

#include "network/socket_control.h"
#include "support/failure.h"

namespace kesp {

// Error numbers of the socket control that the library itself looks at or raises. The values 10004 to 11004
// are those of Winsock (winsock2.h), the others those of the standard socket control for automation clients.
inline constexpr std::int32_t kSocketNoBufferSpace = 10055;
inline constexpr std::int32_t kSocketBadState = 40006;
inline constexpr std::int32_t kSocketInvalidArgument = 40014;

// The number of a call from a thread other than the control's: RPC_E_WRONG_THREAD, by which COM says the
// same.
inline constexpr auto kWrongThread = static_cast<std::int32_t>(0x8001010EU);

// The usual English description of an error number, the one that automation clients know from the standard
// socket control; "Socket error " and the number for one that has none.
std::wstring SocketErrorDescription(std::int32_t number);

// An operation's failure: the number, the source "KespWinsock" and the description.
Failure SocketFailure(std::int32_t number);

// The same as the arguments of the Error notification, its scode being 0x800A0000 plus the number.
SocketError SocketErrorNotification(std::int32_t number);

}  // namespace kesp
