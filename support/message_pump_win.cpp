// Works off the message queue of the calling thread.
#include "support/message_pump_win.h"

#include <windows.h>

namespace kesp {

void MessagePumpWin::PumpOnce() {
  const DWORD entered = GetTickCount();
  MSG message{};
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
    if (message.message == WM_QUIT) {
      PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    TranslateMessage(&message);
    DispatchMessageW(&message);
    // Signed difference: right across the wrap of the tick counter.
    if (static_cast<LONG>(message.time - entered) > 0) return;
  }
}

}  // namespace kesp
