// The place of a hidden control, given to the row below it.
#include "dialogs/page_gap_win.h"

#include <algorithm>
#include <limits>

namespace kesp {

namespace {

POINT PlaceOn(HWND page, HWND window) {
  RECT area{};
  GetWindowRect(window, &area);
  POINT place{area.left, area.top};
  MapWindowPoints(nullptr, page, &place, 1);
  return place;
}

}  // namespace

void CloseGapOf(HWND hidden) {
  HWND page = GetParent(hidden);
  const LONG gap = PlaceOn(page, hidden).y;
  LONG next = std::numeric_limits<LONG>::max();
  for (HWND window = GetWindow(page, GW_CHILD); window != nullptr; window = GetWindow(window, GW_HWNDNEXT)) {
    const LONG top = PlaceOn(page, window).y;
    if (top > gap) next = std::min(next, top);
  }
  for (HWND window = GetWindow(page, GW_CHILD); window != nullptr; window = GetWindow(window, GW_HWNDNEXT)) {
    const POINT place = PlaceOn(page, window);
    if (place.y <= gap) continue;
    SetWindowPos(window, nullptr, place.x, place.y - (next - gap), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
  }
}

}  // namespace kesp
