// A page's background as the theme paints it, kept as a brush.
#include "dialogs/tab_page_win.h"

#include "dialogs/common_controls_win.h"

namespace kesp {

namespace {

// The user's own colours count for more than a theme's.
bool IsHighContrast() {
  HIGHCONTRASTW contrast{};
  contrast.cbSize = sizeof(contrast);
  return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof(contrast), &contrast, 0) != FALSE &&
         (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

HBRUSH PaintedBrush(HWND page) {
  if (IsAppThemed() == FALSE || IsHighContrast()) return nullptr;
  const HTHEME theme = OpenThemeData(page, L"TAB");
  if (theme == nullptr) return nullptr;
  RECT area{};
  GetClientRect(page, &area);
  const HDC screen = GetDC(nullptr);
  const HDC memory = CreateCompatibleDC(screen);
  const HBITMAP bitmap = CreateCompatibleBitmap(screen, area.right, area.bottom);
  ReleaseDC(nullptr, screen);
  const HGDIOBJ before = SelectObject(memory, bitmap);
  FillRect(memory, &area, GetSysColorBrush(COLOR_BTNFACE));
  const HRESULT drawn = DrawThemeBackground(theme, memory, TABP_BODY, 0, &area, nullptr);
  SelectObject(memory, before);
  DeleteDC(memory);
  CloseThemeData(theme);
  const HBRUSH brush = SUCCEEDED(drawn) ? CreatePatternBrush(bitmap) : nullptr;
  DeleteObject(bitmap);
  return brush;
}

}  // namespace

TabPage::~TabPage() {
  if (brush_ != nullptr) DeleteObject(brush_);
}

HBRUSH TabPage::BrushFor(HWND page, HWND window, HDC device) {
  if (brush_ == nullptr) brush_ = PaintedBrush(page);
  if (brush_ == nullptr) return nullptr;
  POINT place{};
  MapWindowPoints(window, page, &place, 1);
  // A control that lets the page paint what lies behind it moves the origin of its device context instead.
  POINT origin{};
  GetViewportOrgEx(device, &origin);
  SetBrushOrgEx(device, origin.x - place.x, origin.y - place.y, nullptr);
  SetBkMode(device, TRANSPARENT);
  SetTextColor(device, GetSysColor(COLOR_WINDOWTEXT));
  return brush_;
}

}  // namespace kesp
