// The moment at which a call of this thread shows a message box or a dialog: its own time is over then, and
// the user's begins.
#pragma once

#include <windows.h>

#include <string_view>

#include "tests/hangs/trial.h"
#include "tests/win/box_reader.h"

namespace kesp::hangs {

// For as long as it lives, the first box ends the trial's time, and is closed by that button. A box must
// come.
class BoxMoment {
 public:
  explicit BoxMoment(Trial& trial, const wchar_t* title = L"Kesp Communications Error", int button = IDOK)
      : reader_(title, Press(button)) {
    Current() = &trial;
    hook_ = SetWindowsHookExW(WH_CBT, &OnEvent, nullptr, GetCurrentThreadId());
  }
  ~BoxMoment() {
    UnhookWindowsHookEx(hook_);
    Current() = nullptr;
  }
  BoxMoment(const BoxMoment&) = delete;
  BoxMoment& operator=(const BoxMoment&) = delete;

 private:
  static Trial*& Current() {
    static Trial* trial = nullptr;
    return trial;
  }
  static LRESULT CALLBACK OnEvent(int code, WPARAM window, LPARAM more) {
    wchar_t name[16] = {};
    const bool is_new = code == HCBT_CREATEWND && Current() != nullptr;
    if (is_new && GetClassNameW(reinterpret_cast<HWND>(window), name, 16) > 0 &&
        name == std::wstring_view(L"#32770")) {
      Current()->EndAtBox();
      Current() = nullptr;
    }
    return CallNextHookEx(nullptr, code, window, more);
  }

  BoxReader reader_;
  HHOOK hook_ = nullptr;
};

}  // namespace kesp::hangs
