// The public enumerations of the library, with the names and values of its type library.
//
// A client may pass any 32-bit number where an enumeration is expected, so a variable of one of these types
// may hold a value that has no name.
#pragma once

#include <cstdint>

// winbase.h has macros of these names.
#undef PARITY_NONE
#undef PARITY_EVEN
#undef PARITY_ODD
#undef PARITY_MARK
#undef PARITY_SPACE

namespace kesp {

// The transport that the communication object uses.
enum class ECommStyle : std::int32_t { csNone = -1, csRS232 = 0, csTCPIP = 1, csIEEE = 2 };

// The status of the communication object's last operation.
enum class ECommError : std::int32_t {
  cfrSuccess = 0,                  // the last operation succeeded
  cfrInvalidSetting = 1,           // a setting was invalid, or a call returned failure without an error
  cfrWriteFailed = 2,              // sending the command failed
  cfrReadFailed = 3,               // reading the reply failed
  cfrTimeout = 4,                  // a read timed out, or the port stayed busy
  cfrInvalidData = 5,              // the reply held characters that are not allowed
  cfrOtherError = 6,               // any other failure; also held while an operation is under way
  cfrInvalidBoardIndex = 7,        // IEEE-488
  cfrInvalidPrimaryAddress = 8,    // IEEE-488
  cfrInvalidSecondaryAddress = 9,  // IEEE-488
  cfrInitializeFailed = 10,        // opening the transport failed
  cfrInvalidIPAddress = 11,        // TCP/IP
  cfrInvalidPort = 12,             // TCP/IP
  cfrNoConnection = 13,            // TCP/IP
};

enum class EInputMode : std::int32_t { imText = 0, imBinary = 1 };

// How many identification commands a detection tries at each place.
enum class EDetectLevel : std::int32_t { dlSCPIOnly = 1, dlCommonCommands = 2, dlAllCommands = 3 };

enum class ESearchOption : std::int32_t { soFindFirst = 0, soFindNext = 1 };

// What the settings dialogs show besides their first page; combined by OR.
enum class EEditCommFlags : std::int32_t {
  ecfShowRS232ExtendedTab = 1,
  ecfShowRS232SmartSwitchTab = 2,
  ecfShowRS232IRDongle = 4,
  ecfShowTCPExtendedTab = 8,
};

// Whether the flags hold that one, whatever else they hold.
constexpr bool Includes(EEditCommFlags flags, EEditCommFlags one) {
  return (static_cast<std::int32_t>(flags) & static_cast<std::int32_t>(one)) != 0;
}

// Index of a serial bit rate; the name gives the rate in bit/s.
enum class EKespBaudRate3 : std::int32_t {
  brNone = -1,
  br150 = 0,
  br300 = 1,
  br600 = 2,
  br1200 = 3,
  br2400 = 4,
  br4800 = 5,
  br9600 = 6,
  br19200 = 7,
  br38400 = 8,
  br57600 = 9,
  br115200 = 10,
  br230400 = 11,
  br460800 = 12,
  br921600 = 13,
};

enum class EKespDataBits3 : std::int32_t {
  DATA_4BITS = 0,
  DATA_5BITS = 1,
  DATA_6BITS = 2,
  DATA_7BITS = 3,
  DATA_8BITS = 4,
};

enum class EKespStopBits3 : std::int32_t { STOP_1BIT = 0, STOP_1_5BITS = 1, STOP_2BITS = 2 };

enum class EKespParity3 : std::int32_t {
  PARITY_NONE = 0,
  PARITY_EVEN = 1,
  PARITY_ODD = 2,
  PARITY_MARK = 3,
  PARITY_SPACE = 4,
};

// What kind of controller sits on the serial line.
enum class EKespControllerStyle3 : std::int32_t {
  CS_KESP = 0,       // the maker's own controllers
  CS_OMEGA = 1,      // Omega 847/848 controllers, addressed per command
  CS_PRECIDIA = 2,   // a Precidia device: fixed 9600 baud, XON/XOFF handshaking
  CS_MAXSTREAM = 3,  // MaxStream radio modem
};

// Model of the serial port switch. The values are not in the order of the port counts.
enum class ESmartSwitchStyle3 : std::int32_t { ssBB4port = 0, ssBB8port = 1, ssBB6port = 2 };

// IEEE-488 time-out steps: the time-out codes of the NI-488.2 driver.
enum class ETimeOutSecs : std::int32_t {
  toNone = 0,
  to10us = 1,
  to30us = 2,
  to100us = 3,
  to300us = 4,
  to1ms = 5,
  to3ms = 6,
  to10ms = 7,
  to30ms = 8,
  to100ms = 9,
  to300ms = 10,
  to1s = 11,
  to3s = 12,
  to10s = 13,
  to30s = 14,
  to100s = 15,
  to300s = 16,
  to1000s = 17,
};

// State of the network transport's socket.
enum class EKespTCPState : std::int32_t {
  sckClosed = 0,
  sckOpen = 1,
  sckListening = 2,
  sckConnectionPending = 3,
  sckResolvingHost = 4,
  sckHostResolved = 5,
  sckConnecting = 6,
  sckConnected = 7,
  sckClosing = 8,
  sckError = 9,
};

enum class EKespProtocol : std::int32_t { sckTCPProtocol = 0, sckUDPProtocol = 1 };

enum class EIPType : std::int32_t { ipStatic = 0, ipDynamic = 1 };

}  // namespace kesp
