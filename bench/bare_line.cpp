// Open, configure, write, read, close.
#include "bench/bare_line.h"

#include <stdexcept>

namespace kesp::bench {

namespace {

void Check(bool succeeded, const char* what) {
  if (!succeeded) throw std::runtime_error(std::string(what) + " failed: " + std::to_string(GetLastError()));
}

HANDLE OpenPort(int port, LineKind kind) {
  const std::wstring name = LR"(\\.\COM)" + std::to_wstring(port);
  const DWORD flags = kind == LineKind::kOverlapped ? FILE_FLAG_OVERLAPPED : 0;
  HANDLE handle =
      CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, flags, nullptr);
  Check(handle != INVALID_HANDLE_VALUE, "CreateFile");
  return handle;
}

}  // namespace

BareLine::BareLine(int port, LineKind kind)
    : kind_(kind), handle_(OpenPort(port, kind)), buffer_(std::size_t{64} * 1024, '\0') {
  DCB state{};
  state.DCBlength = sizeof state;
  Check(GetCommState(handle_, &state), "GetCommState");
  state.BaudRate = CBR_9600;
  state.ByteSize = 8;
  state.Parity = NOPARITY;
  state.StopBits = ONESTOPBIT;
  state.fBinary = TRUE;
  state.fDtrControl = DTR_CONTROL_ENABLE;
  state.fRtsControl = RTS_CONTROL_ENABLE;
  Check(SetCommState(handle_, &state), "SetCommState");
  COMMTIMEOUTS timeouts{};
  if (kind == LineKind::kOverlapped) timeouts.ReadIntervalTimeout = MAXDWORD;
  Check(SetCommTimeouts(handle_, &timeouts), "SetCommTimeouts");
}

BareLine::~BareLine() {
  CloseHandle(handle_);
}

void BareLine::Send(const std::string& bytes) {
  OVERLAPPED overlapped{};
  DWORD written = 0;
  const bool asynchronous = kind_ == LineKind::kOverlapped;
  const BOOL done = WriteFile(handle_, bytes.data(), static_cast<DWORD>(bytes.size()),
                              asynchronous ? nullptr : &written, asynchronous ? &overlapped : nullptr);
  Check(done, "WriteFile");
}

DWORD BareLine::Queued() const {
  DWORD errors = 0;
  COMSTAT status{};
  Check(ClearCommError(handle_, &errors, &status), "ClearCommError");
  return status.cbInQue;
}

DWORD BareLine::Receive(DWORD count) {
  OVERLAPPED overlapped{};
  DWORD received = 0;
  if (kind_ == LineKind::kSynchronous) {
    Check(ReadFile(handle_, buffer_.data(), count, &received, nullptr), "ReadFile");
    return received;
  }
  Check(ReadFile(handle_, buffer_.data(), count, nullptr, &overlapped), "ReadFile");
  return static_cast<DWORD>(overlapped.InternalHigh);
}

std::size_t BareLine::ReceiveLine() {
  std::size_t total = 0;
  for (;;) {
    // A synchronous read of one byte waits for it; of none there would be nothing to wait with.
    DWORD count = Queued();
    if (count == 0 && kind_ == LineKind::kSynchronous) count = 1;
    if (count == 0) continue;
    const DWORD received = Receive(count);
    total += received;
    if (received > 0 && buffer_[received - 1] == '\r') return total;
  }
}

}  // namespace kesp::bench
