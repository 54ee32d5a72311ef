// A COM port as Windows gives it, without the library.
#pragma once

#include <windows.h>

#include <string>

namespace kesp::clients {

// One handle of a port, opened for one user alone.
class BarePort {
 public:
  // 9600 bit/s, 8 data bits, no parity, 1 stop bit, DTR and RTS down, no flow control. Where the port cannot
  // be opened or set, error() says why.
  explicit BarePort(const std::wstring& name);
  ~BarePort() { Close(); }
  BarePort(const BarePort&) = delete;
  BarePort& operator=(const BarePort&) = delete;

  // The Windows error of opening, or ERROR_SUCCESS.
  DWORD error() const { return error_; }
  HANDLE handle() const { return handle_; }
  void Close();

 private:
  DWORD Set();

  HANDLE handle_;
  DWORD error_;
};

}  // namespace kesp::clients
