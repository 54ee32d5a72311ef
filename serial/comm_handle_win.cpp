// Opening a serial port by its device name, which alone reaches those above COM9.
#include "serial/comm_handle_win.h"

#include <string>
#include <utility>

namespace kesp {

namespace {

constexpr DWORD kNoSuchDevice = 433;  // ERROR_NO_SUCH_DEVICE, which older headers lack

}  // namespace

DWORD CommHandle::Open(std::int16_t port) {
  Close();
  const std::wstring name = LR"(\\.\COM)" + std::to_wstring(port);
  handle_ = CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                        FILE_FLAG_OVERLAPPED, nullptr);
  if (is_open()) return 0;
  switch (const DWORD error = GetLastError()) {
    // An adapter that was pulled is told in several ways, by the system and by its driver.
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_DEV_NOT_EXIST:
    case kNoSuchDevice:
    case ERROR_DEVICE_NOT_CONNECTED:
    case ERROR_DEVICE_REMOVED:
      return ERROR_FILE_NOT_FOUND;
    case ERROR_SHARING_VIOLATION:
      return ERROR_ACCESS_DENIED;
    default:
      return error;
  }
}

void CommHandle::Close() {
  if (is_open()) CloseHandle(std::exchange(handle_, INVALID_HANDLE_VALUE));
}

}  // namespace kesp
