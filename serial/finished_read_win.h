// A read of bytes that the driver of a serial port holds already.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace kesp {

// How long a driver may take to hand out bytes that it has counted. Those of COM ports on a network may ask
// the other end for them.
inline constexpr DWORD kReadPatienceMs = 5000;

// Reads that many bytes, or fewer when the driver has fewer by now; the port's time-outs are such that a read
// does not wait for bytes to come. A read that is not finished within the patience is called back, for which
// the driver has another second; it counts when it finished meanwhile. Nothing when the read fails.
std::optional<std::string> FinishedRead(HANDLE port, DWORD count, DWORD patience_ms = kReadPatienceMs);

}  // namespace kesp
