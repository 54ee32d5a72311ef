// Windows that wait for a dialog, found and disabled.
#include "support/thread_modal_win.h"

namespace kesp {

ThreadModal::ThreadModal(HWND dialog) : dialog_(dialog) {
  EnumThreadWindows(GetCurrentThreadId(), &Disable, reinterpret_cast<LPARAM>(this));
}

ThreadModal::~ThreadModal() {
  for (HWND window : disabled_) {
    if (IsWindow(window) != FALSE) EnableWindow(window, TRUE);
  }
}

BOOL CALLBACK ThreadModal::Disable(HWND window, LPARAM self) {
  auto& modal = *reinterpret_cast<ThreadModal*>(self);
  if (window == modal.dialog_ || IsWindowVisible(window) == FALSE || IsWindowEnabled(window) == FALSE) {
    return TRUE;
  }
  modal.disabled_.push_back(window);
  EnableWindow(window, FALSE);
  return TRUE;
}

}  // namespace kesp
