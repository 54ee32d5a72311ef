// Image and text of an entry, in the system's colors.
#include "dialogs/image_item_win.h"

#include <algorithm>

namespace kesp {

namespace {

SIZE SizeOf(HIMAGELIST images) {
  int width = 0;
  int height = 0;
  ImageList_GetIconSize(images, &width, &height);
  return {width, height};
}

int FontHeight(HWND window) {
  const HDC device = GetDC(window);
  const HGDIOBJ before =
      SelectObject(device, reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0)));
  TEXTMETRICW metrics{};
  GetTextMetricsW(device, &metrics);
  SelectObject(device, before);
  ReleaseDC(window, device);
  return static_cast<int>(metrics.tmHeight);
}

int TextColor(UINT state) {
  if ((state & ODS_DISABLED) != 0) return COLOR_GRAYTEXT;
  return (state & ODS_SELECTED) != 0 ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT;
}

void DrawLabel(const DRAWITEMSTRUCT& item, RECT area, int margin, const std::wstring& text) {
  const int length = static_cast<int>(text.size());
  SIZE size{};
  GetTextExtentPoint32W(item.hDC, text.c_str(), length, &size);
  area.right = std::min(area.right, area.left + size.cx + 2 * margin);
  if ((item.itemState & ODS_SELECTED) != 0) FillRect(item.hDC, &area, GetSysColorBrush(COLOR_HIGHLIGHT));
  SetBkMode(item.hDC, TRANSPARENT);
  SetTextColor(item.hDC, GetSysColor(TextColor(item.itemState)));
  RECT inside = {area.left + margin, area.top, area.right, area.bottom};
  DrawTextW(item.hDC, text.c_str(), length, &inside, DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
  const bool focus = (item.itemState & ODS_FOCUS) != 0 && (item.itemState & ODS_NOFOCUSRECT) == 0;
  if (!focus) return;
  // Drawn by these two.
  SetTextColor(item.hDC, RGB(0, 0, 0));
  SetBkColor(item.hDC, RGB(255, 255, 255));
  DrawFocusRect(item.hDC, &area);
}

}  // namespace

void FitItems(HWND combo, HIMAGELIST images) {
  // A plain combo box leaves a pixel above and below its text.
  const auto height = std::max<LPARAM>(FontHeight(combo) + 2, SizeOf(images).cy);
  constexpr auto kSelectionField = static_cast<WPARAM>(-1);
  for (const WPARAM part : {kSelectionField, WPARAM{0}}) SendMessageW(combo, CB_SETITEMHEIGHT, part, height);
}

void DrawImageItem(const DRAWITEMSTRUCT& item, HIMAGELIST images, int image, const std::wstring& text) {
  const int device = SaveDC(item.hDC);
  const bool enabled = (item.itemState & ODS_DISABLED) == 0;
  FillRect(item.hDC, &item.rcItem, GetSysColorBrush(enabled ? COLOR_WINDOW : COLOR_3DFACE));
  const SIZE size = SizeOf(images);
  const int margin = static_cast<int>(size.cx) / 8;
  RECT area = item.rcItem;
  area.left += margin;
  if (image >= 0) {
    const LONG top = area.top + (area.bottom - area.top - size.cy) / 2;
    ImageList_Draw(images, image, item.hDC, static_cast<int>(area.left), static_cast<int>(top),
                   ILD_TRANSPARENT);
  }
  area.left += size.cx + margin;
  DrawLabel(item, area, margin, text);
  RestoreDC(item.hDC, device);
}

}  // namespace kesp
