// Opening a serial port by its device name, which alone reaches those above COM9.
#include "serial/comm_handle_win.h"

#include <string>
#include <utility>

#include "serial/closed_ports.h"

namespace kesp {

namespace {

// How often a port is tried that its driver has not let go of.
constexpr DWORD kReleaseStepMs = 5;

ClosedPorts closed_ports;

}  // namespace

OpeningOutcome CommHandle::Open(std::int16_t port) {
  Close();
  OpeningOutcome outcome = TryToOpen(port);
  // Another thread may open the port meanwhile, which ends the wait.
  while (outcome == OpeningOutcome::kInUse && closed_ports.WasJustClosed(port, GetTickCount())) {
    Sleep(kReleaseStepMs);
    outcome = TryToOpen(port);
  }
  return outcome;
}

OpeningOutcome CommHandle::TryToOpen(std::int16_t port) {
  const std::wstring name = LR"(\\.\COM)" + std::to_wstring(port);
  handle_ = CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                        FILE_FLAG_OVERLAPPED, nullptr);
  if (!is_open()) return OutcomeOfOpening(GetLastError());
  port_ = port;
  closed_ports.NoteOpened(port);
  return OpeningOutcome::kOpened;
}

void CommHandle::Close() {
  if (!is_open()) return;
  // Before, for somebody who tries the port while it is being closed, and after, because that may take its
  // time.
  closed_ports.NoteClosed(port_, GetTickCount());
  CloseHandle(std::exchange(handle_, INVALID_HANDLE_VALUE));
  closed_ports.NoteClosed(port_, GetTickCount());
}

}  // namespace kesp
