// A COM port as Windows gives it, without the library.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace kesp::clients {

// One handle of a port, opened for one user alone and for synchronous reads and writes.
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

  // What was written, in bytes; stops after the milliseconds.
  DWORD Write(std::string_view bytes, DWORD milliseconds = 10000);
  // Polls until so many bytes came or ten seconds are over.
  std::string Read(std::size_t count);

 private:
  DWORD Set();

  HANDLE handle_;
  DWORD error_;
};

}  // namespace kesp::clients
