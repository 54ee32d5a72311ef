// The foremost window of a thread.
#include "support/owner_window_win.h"

namespace kesp {

namespace {

BOOL CALLBACK IsUsable(HWND window, LPARAM found) {
  // A tool tip is seen, too, and in front of everything.
  const bool is_tool = (GetWindowLongPtrW(window, GWL_EXSTYLE) & (WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE)) != 0;
  if (is_tool || IsWindowVisible(window) == FALSE || IsWindowEnabled(window) == FALSE) return TRUE;
  *reinterpret_cast<HWND*>(found) = window;
  return FALSE;
}

}  // namespace

HWND OwnerWindow() {
  HWND window = GetActiveWindow();
  // They come in their order on the screen.
  if (window == nullptr)
    EnumThreadWindows(GetCurrentThreadId(), &IsUsable, reinterpret_cast<LPARAM>(&window));
  return window;
}

}  // namespace kesp
