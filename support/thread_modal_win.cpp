// Windows that wait for a dialog, found and disabled.
#include "support/thread_modal_win.h"

#include "support/window_list_win.h"

namespace kesp {

ThreadModal::ThreadModal(HWND dialog) {
  const std::vector<HWND> windows = WindowsOfThread();
  // From here on nothing fails that would leave some of them disabled.
  disabled_.reserve(windows.size());
  for (HWND window : windows) {
    if (window == dialog || IsWindowVisible(window) == FALSE || IsWindowEnabled(window) == FALSE) continue;
    disabled_.push_back(window);
    EnableWindow(window, FALSE);
  }
}

ThreadModal::~ThreadModal() {
  for (HWND window : disabled_) {
    if (IsWindow(window) != FALSE) EnableWindow(window, TRUE);
  }
}

}  // namespace kesp
