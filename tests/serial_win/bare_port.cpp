// The COM port of the system, through the functions that the system documents.
#include "tests/serial_win/bare_port.h"

namespace kesp::clients {

namespace {

constexpr DWORD kBufferBytes = 4096;
constexpr ULONGLONG kReadDeadlineMs = 10000;

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
  // Reads give what is there.
  COMMTIMEOUTS at_once{MAXDWORD, 0, 0, 0, 0};
  return ErrorUnless(SetupComm(handle_, kBufferBytes, kBufferBytes) != FALSE &&
                     SetCommState(handle_, &settings) != FALSE &&
                     SetCommTimeouts(handle_, &at_once) != FALSE);
}

DWORD BarePort::Write(std::string_view bytes, DWORD milliseconds) {
  COMMTIMEOUTS limited{MAXDWORD, 0, 0, 0, milliseconds};
  SetCommTimeouts(handle_, &limited);
  DWORD written = 0;
  WriteFile(handle_, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
  return written;
}

std::string BarePort::Read(std::size_t count) {
  std::string bytes(count, '\0');
  std::size_t length = 0;
  const ULONGLONG start = GetTickCount64();
  while (length < count && GetTickCount64() - start < kReadDeadlineMs) {
    DWORD piece = 0;
    if (ReadFile(handle_, &bytes[length], static_cast<DWORD>(count - length), &piece, nullptr) == FALSE)
      break;
    length += piece;
    if (piece == 0) Sleep(1);
  }
  bytes.resize(length);
  return bytes;
}

}  // namespace kesp::clients
