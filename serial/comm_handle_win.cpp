// Opening a serial port by its device name, which alone reaches those above COM9.
#include "serial/comm_handle_win.h"

#include <string>
#include <utility>

namespace kesp {

OpeningOutcome CommHandle::Open(std::int16_t port) {
  Close();
  const std::wstring name = LR"(\\.\COM)" + std::to_wstring(port);
  handle_ = CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                        FILE_FLAG_OVERLAPPED, nullptr);
  return is_open() ? OpeningOutcome::kOpened : OutcomeOfOpening(GetLastError());
}

void CommHandle::Close() {
  if (is_open()) CloseHandle(std::exchange(handle_, INVALID_HANDLE_VALUE));
}

}  // namespace kesp
