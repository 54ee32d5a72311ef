// The hand's thread: finds the dialog that is enabled, and posts messages to it.
#include "tests/faults/dialog_hand.h"

#include <utility>

#include "dialogs/common_controls_win.h"

namespace kesp::faults {

namespace {

constexpr DWORD kPauseMs = 10;
// How long a dialog may take to do a step.
constexpr UINT kPatienceMs = 2000;
// How long a step waits for its dialog.
constexpr DWORD kLongestWaitMs = 8000;

struct Search {
  HWND found = nullptr;
};

BOOL CALLBACK TakeEnabledDialog(HWND window, LPARAM search) {
  wchar_t name[16] = L"";
  GetClassNameW(window, name, 16);
  const bool is_dialog = lstrcmpW(name, L"#32770") == 0;
  if (!is_dialog || IsWindowVisible(window) == FALSE || IsWindowEnabled(window) == FALSE) return TRUE;
  reinterpret_cast<Search*>(search)->found = window;
  return FALSE;
}

HWND TopDialog(DWORD thread) {
  Search search;
  EnumThreadWindows(thread, &TakeEnabledDialog, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

struct ControlSearch {
  int id = 0;
  HWND found = nullptr;
};

BOOL CALLBACK TakeControl(HWND window, LPARAM search) {
  auto& control = *reinterpret_cast<ControlSearch*>(search);
  if (GetDlgCtrlID(window) != control.id) return TRUE;
  control.found = window;
  return FALSE;
}

// On the dialog or one of its pages.
HWND ControlOf(HWND dialog, int id) {
  ControlSearch search{.id = id};
  EnumChildWindows(dialog, &TakeControl, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

// Returns when the dialog has worked off what was posted so far.
void Settle(HWND dialog) {
  DWORD_PTR result = 0;
  SendMessageTimeoutW(dialog, WM_NULL, 0, 0, SMTO_NORMAL, kPatienceMs, &result);
}

bool IsShown(HWND dialog, int id) {
  if (id == 0) return true;
  const HWND control = ControlOf(dialog, id);
  DWORD_PTR length = 0;
  return control != nullptr &&
         SendMessageTimeoutW(control, WM_GETTEXTLENGTH, 0, 0, SMTO_NORMAL, kPatienceMs, &length) != 0 &&
         length > 0;
}

// False where a user could not do it.
bool Do(HWND dialog, const HandStep& step) {
  const HWND control = ControlOf(dialog, step.control);
  if (control == nullptr || IsWindowEnabled(control) == FALSE) return false;
  if (step.page < 0) {
    PostMessageW(control, BM_CLICK, 0, 0);
  } else {
    PostMessageW(control, TCM_SETCURFOCUS, static_cast<WPARAM>(step.page), 0);
  }
  return true;
}

}  // namespace

DialogHand::DialogHand(std::vector<HandStep> steps)
    : steps_(std::move(steps)), watched_thread_(GetCurrentThreadId()), thread_([this] { Run(); }) {}

bool DialogHand::Finish() {
  is_over_ = true;
  if (thread_.joinable()) thread_.join();
  return all_done_;
}

void DialogHand::Run() {
  std::size_t next = 0;
  DWORD since = GetTickCount();
  while (!is_over_) {
    Sleep(kPauseMs);
    const HWND dialog = TopDialog(watched_thread_);
    if (dialog == nullptr) continue;
    Settle(dialog);
    if (next < steps_.size()) {
      if (!IsShown(dialog, steps_[next].shown) && GetTickCount() - since < kLongestWaitMs) continue;
      since = GetTickCount();
      all_done_ = Do(dialog, steps_[next++]) && all_done_;
    } else {
      PostMessageW(dialog, WM_CLOSE, 0, 0);
    }
    Settle(dialog);
  }
  all_done_ = all_done_ && next == steps_.size();
}

}  // namespace kesp::faults
