// Every error number that the library's classes raise: object-error base 0x80040000 plus an offset per class.
//
// These are the numbers of the type library's error enumerations (server/KespCommObj.idl); the server checks
// at compile time that the two agree. Two lists hold ERR_INVALID_COM_PORT and ERR_ADDRESS_NOT_SPECIFIED with
// different values, hence one scope per class.
#pragma once

#include <cstdint>

namespace kesp {

inline constexpr std::int32_t kObjectErrorBase = -2147221504;  // 0x80040000

enum EErrRDTDevice : std::int32_t { ERR_SYSTEM_ERROR = kObjectErrorBase };

namespace comm_obj_error {
enum EKespCommObjErrorCodes : std::int32_t {
  ERR_COMM_STYLE_NOT_SUPPORTED = kObjectErrorBase + 200,  // 0x800400C8
  ERR_NO_COMM_OBJECT,
  ERR_INVALID_COM_PORT,
  ERR_ADDRESS_NOT_SPECIFIED,
};
}

namespace com_port_error {
enum EKespCOMPort3ErrorCodes : std::int32_t {
  ERR_INVALID_COM_PORT = kObjectErrorBase + 220,  // 0x800400DC
  ERR_INVALID_TIMEOUT,
  ERR_INVALID_BAUD_RATE,
  ERR_BAUD_RATE_NOT_SUPPORTED,
  ERR_ADDRESS_NOT_SPECIFIED,
  ERR_READ_TIMEOUT,
  ERR_INVALID_CHARACTERS,
  ERR_DOWNLOAD_TIMEOUT,
};
}

namespace ieee_error {
enum EKespIEEEErrorCodes : std::int32_t {
  ERR_INVALID_PRIMARY_ADDRESS = kObjectErrorBase + 230,  // 0x800400E6
  ERR_INVALID_SECONDARY_ADDRESS,
  ERR_INVALID_BOARD_INDEX,
  ERR_INVALID_DEVICE,
  ERR_IBDEV,
  ERR_IBCLR,
  ERR_IBEOS,
  ERR_IBWRT,
  ERR_IBRD,
  ERR_IBONL,
};
}

namespace tcp_error {
enum EKespTCPErrorCodes : std::int32_t {
  ERR_INVALID_IP_ADDRESS = kObjectErrorBase + 240,  // 0x800400F0
  ERR_INVALID_PORT,
  ERR_CONNECTING,
  ERR_CLOSING,
  ERR_NOT_INITIALIZED,
  ERR_SEND_DATA,
  ERR_GET_DATA,
  ERR_TIMEOUT,
  ERR_NO_CONNECTION,
  ERR_TCP_INVALID_CHARACTERS,
};
}

}  // namespace kesp
