// A hand that closes whatever dialog opens.
#pragma once

#include <windows.h>

namespace kesp::variants {

// Dialogs and boxes of this thread are cancelled as soon as they come up, for as long as it lives.
class BoxCloser {
 public:
  BoxCloser() : hook_(SetWindowsHookExW(WH_CBT, &BoxCloser::Procedure, nullptr, GetCurrentThreadId())) {}
  ~BoxCloser() { UnhookWindowsHookEx(hook_); }
  BoxCloser(const BoxCloser&) = delete;
  BoxCloser& operator=(const BoxCloser&) = delete;

 private:
  static LRESULT CALLBACK Procedure(int code, WPARAM window, LPARAM more) {
    if (code == HCBT_ACTIVATE) {
      PostMessageW(reinterpret_cast<HWND>(window), WM_COMMAND, IDCANCEL, 0);
      PostMessageW(reinterpret_cast<HWND>(window), WM_CLOSE, 0, 0);
    }
    return CallNextHookEx(nullptr, code, window, more);
  }

  HHOOK hook_;
};

}  // namespace kesp::variants
