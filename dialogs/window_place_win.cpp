// The middle of another window, within the screen.
#include "dialogs/window_place_win.h"

#include <algorithm>

namespace kesp {

void PlaceOver(HWND window, HWND owner) {
  const bool beside_owner = owner != nullptr && IsWindowVisible(owner) != FALSE && IsIconic(owner) == FALSE;
  POINT pointer{};
  GetCursorPos(&pointer);
  MONITORINFO monitor{};
  monitor.cbSize = sizeof(monitor);
  GetMonitorInfoW(beside_owner ? MonitorFromWindow(owner, MONITOR_DEFAULTTONEAREST)
                               : MonitorFromPoint(pointer, MONITOR_DEFAULTTONEAREST),
                  &monitor);
  const RECT& work = monitor.rcWork;
  RECT around = work;
  if (beside_owner) GetWindowRect(owner, &around);
  RECT size{};
  GetWindowRect(window, &size);
  const LONG width = size.right - size.left;
  const LONG height = size.bottom - size.top;
  const LONG left = (around.left + around.right - width) / 2;
  const LONG top = (around.top + around.bottom - height) / 2;
  // Title bar and left edge count most when the screen is too small.
  SetWindowPos(window, nullptr, std::max(work.left, std::min(left, work.right - width)),
               std::max(work.top, std::min(top, work.bottom - height)), 0, 0,
               SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace kesp
