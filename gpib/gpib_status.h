// What the driver reports of its last call on a thread, and the text of its error numbers.
#pragma once

#include <cstdint>
#include <string>

namespace kesp {

// The driver's status variables as the transport sees them.
struct GpibStatus {
  std::int16_t ibsta = 0;   // status word; bit 15 is the error bit
  std::int16_t iberr = 0;   // error number, meaningful after a failure
  std::int16_t ibcnt = 0;   // bytes transferred, the low 16 bits as a signed number
  std::int32_t ibcntl = 0;  // bytes transferred

  // Whether the error bit of the status word is set.
  bool Failed() const { return static_cast<std::uint16_t>(ibsta) >= 0x8000U; }

  // "Error: ", the error number, " - " and its message, as in "Error: 2 - Write function detected no
  // listeners".
  std::wstring ErrorText() const;
};

// The low 16 bits of one of the driver's 32-bit cells as a signed number: 0x8100 becomes -32512.
std::int16_t Low16(std::int32_t cell);

// The message of a driver error number; "Unknown Error" for those without one.
std::wstring GpibErrorMessage(std::int16_t number);

}  // namespace kesp
