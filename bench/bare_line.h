// The bare serial client that the library is measured against: the communication functions and nothing else.
#pragma once

#include <windows.h>

#include <string>

namespace kesp::bench {

// How the handle was opened, and how the reply is awaited with it.
enum class LineKind {
  kOverlapped,   // polls the count of queued bytes and reads exactly those, as the library does
  kSynchronous,  // waits in ReadFile for the first byte, then takes the rest; what is fastest under Wine
};

// An open port at 9600 bit/s, 8 data bits, no parity. Throws std::runtime_error when a call fails.
class BareLine {
 public:
  BareLine(int port, LineKind kind);
  ~BareLine();
  BareLine(const BareLine&) = delete;
  BareLine& operator=(const BareLine&) = delete;

  void Send(const std::string& bytes);

  // Receives until a carriage return has come; returns the number of bytes.
  std::size_t ReceiveLine();

 private:
  DWORD Queued() const;
  DWORD Receive(DWORD count);

  LineKind kind_;
  HANDLE handle_;
  std::string buffer_;
};

}  // namespace kesp::bench
