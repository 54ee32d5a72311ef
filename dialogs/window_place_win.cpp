// The middle of another window, within the screen.
#include "dialogs/window_place_win.h"

#include <algorithm>

namespace kesp {

namespace {

SIZE SizeOf(HWND window) {
  RECT area{};
  GetWindowRect(window, &area);
  return {area.right - area.left, area.bottom - area.top};
}

void Place(HWND window, HWND owner) {
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
  const SIZE size = SizeOf(window);
  const LONG left = (around.left + around.right - size.cx) / 2;
  const LONG top = (around.top + around.bottom - size.cy) / 2;
  // Title bar and left edge count most when the screen is too small.
  SetWindowPos(window, nullptr, std::max(work.left, std::min(left, work.right - size.cx)),
               std::max(work.top, std::min(top, work.bottom - size.cy)), 0, 0,
               SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace

void PlaceOver(HWND window, HWND owner) {
  const SIZE before = SizeOf(window);
  Place(window, owner);
  // A screen with other dots per inch may have given it another size.
  const SIZE after = SizeOf(window);
  if (after.cx != before.cx || after.cy != before.cy) Place(window, owner);
}

}  // namespace kesp
