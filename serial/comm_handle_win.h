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

  // Opens \\.\COMn.
  OpeningOutcome Open(std::int16_t port);

  void Close();

  bool is_open() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE get() const { return handle_; }

 private:
  HANDLE handle_ = INVALID_HANDLE_VALUE;
};

}  // namespace kesp
