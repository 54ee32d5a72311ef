// A read of bytes that the driver of a serial port holds already.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace kesp {

// Reads that many bytes, or fewer when the driver has fewer by now; the port's time-outs are such that a read
// does not wait. Nothing when the read fails, or when the driver does not finish it within a fifth of a
// second.
std::optional<std::string> FinishedRead(HANDLE port, DWORD count);

}  // namespace kesp
