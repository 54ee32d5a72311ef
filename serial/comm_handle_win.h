// The handle of an open serial port.
#pragma once

#include <windows.h>

#include <cstdint>

#include "serial/opening_outcome.h"

namespace kesp {

// Owns the handle; opened for overlapped operation and for this program alone.
class CommHandle {
 public:
  CommHandle() = default;
  ~CommHandle() { Close(); }
  CommHandle(const CommHandle&) = delete;
  CommHandle& operator=(const CommHandle&) = delete;

  // Opens \\.\COMn. When the port is in use and a handle of this process was its last user, the driver is
  // given half a second from that closing to let go of it.
  OpeningOutcome Open(std::int16_t port);

  void Close();

  bool is_open() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE get() const { return handle_; }

 private:
  OpeningOutcome TryToOpen(std::int16_t port);

  HANDLE handle_ = INVALID_HANDLE_VALUE;
  std::int16_t port_ = 0;
};

}  // namespace kesp
