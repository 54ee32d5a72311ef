// The handler of Ctrl-C, which Windows calls on a thread of its own.
#include "console/interruption_win.h"

#include <atomic>

#include "console/options.h"

namespace kesp::console {
namespace {

HANDLE happened = nullptr;
std::atomic<bool> ends_program = false;

BOOL WINAPI OnControl(DWORD event) {
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) return FALSE;
  const bool again = WaitForSingleObject(happened, 0) == WAIT_OBJECT_0;
  // Nothing is unloaded: the main thread may be anywhere.
  if (again || ends_program) TerminateProcess(GetCurrentProcess(), kExitInterrupted);
  SetEvent(happened);
  return TRUE;
}

}  // namespace

Interruption::Interruption() {
  happened = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  SetConsoleCtrlHandler(OnControl, TRUE);
}

Interruption::~Interruption() {
  SetConsoleCtrlHandler(OnControl, FALSE);
  // The event stays until the process ends: the handler may be running.
}

bool Interruption::Happened() const {
  return WaitForSingleObject(happened, 0) == WAIT_OBJECT_0;
}

HANDLE Interruption::event() const {
  return happened;
}

void Interruption::SetEndsProgram(bool ends) {
  ends_program = ends;
}

}  // namespace kesp::console
