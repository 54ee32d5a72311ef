// The COM port of the system, through the functions that the system documents.
#include "tests/serial_win/bare_port.h"

namespace kesp::clients {

namespace {

constexpr DWORD kBufferBytes = 4096;

HANDLE Opened(const std::wstring& name) {
  return CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
}

DWORD ErrorUnless(BOOL succeeded) {
  return succeeded != FALSE ? ERROR_SUCCESS : GetLastError();
}

}  // namespace

BarePort::BarePort(const std::wstring& name)
    : handle_(Opened(name)), error_(ErrorUnless(handle_ != INVALID_HANDLE_VALUE)) {
  if (error_ == ERROR_SUCCESS) error_ = Set();
}

void BarePort::Close() {
  if (handle_ != INVALID_HANDLE_VALUE) CloseHandle(handle_);
  handle_ = INVALID_HANDLE_VALUE;
}

DWORD BarePort::Set() {
  DCB settings{};
  settings.DCBlength = sizeof settings;
  settings.BaudRate = CBR_9600;
  settings.fBinary = TRUE;
  settings.ByteSize = 8;
  settings.Parity = NOPARITY;
  settings.StopBits = ONESTOPBIT;
  settings.fDtrControl = DTR_CONTROL_DISABLE;
  settings.fRtsControl = RTS_CONTROL_DISABLE;
  return ErrorUnless(SetupComm(handle_, kBufferBytes, kBufferBytes) != FALSE &&
                     SetCommState(handle_, &settings) != FALSE);
}

}  // namespace kesp::clients
