// The background of a page on a tab strip, so that labels and check boxes on it have no patches of their own.
#pragma once

#include <windows.h>

namespace kesp {

// Paints what a theme shows below the tabs, on a page and behind the controls of that page. Without a theme
// everything stays as the system paints it. What it has painted holds until the theme, the colours or the
// size of the page change; then a new one is due.
class TabPage {
 public:
  TabPage() = default;
  ~TabPage();
  TabPage(const TabPage&) = delete;
  TabPage& operator=(const TabPage&) = delete;

  // For the page's WM_CTLCOLORDLG, WM_CTLCOLORSTATIC and WM_CTLCOLORBTN: the brush for that window, which is
  // the page or a control on it, with the device context made ready; null for the system's own.
  HBRUSH BrushFor(HWND page, HWND window, HDC device);

 private:
  HBRUSH brush_ = nullptr;
};

}  // namespace kesp
