// Reading the windows of another thread, with deadlines.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace kesp {

inline constexpr DWORD kWindowDeadlineMs = 10000;

// Polls until the condition holds; false when the time is up first.
template <typename Condition>
bool WaitFor(Condition condition, DWORD deadline_ms = kWindowDeadlineMs) {
  constexpr DWORD kPollMs = 10;
  const DWORD start = GetTickCount();
  while (!condition()) {
    if (GetTickCount() - start > deadline_ms) return false;
    Sleep(kPollMs);
  }
  return true;
}

// The text that a window has or gives; a limit keeps a hung thread from hanging us.
std::wstring WindowText(HWND window);

// A message to a window of another thread, within the same limit; 0 when it does not answer.
LRESULT Ask(HWND window, UINT message, WPARAM first = 0, LPARAM second = 0);

// Where it is on the screen.
inline RECT AreaOf(HWND window) {
  RECT area{};
  GetWindowRect(window, &area);
  return area;
}

bool HasClass(HWND window, const wchar_t* name);

// The window of that thread that has the keyboard; null when none has.
HWND FocusOf(DWORD thread);

// The visible dialog with that caption on that thread; null when there is none.
HWND FindDialog(const std::wstring& caption, DWORD thread);

// Ends every dialog of the thread by force, so that the thread goes on. Ends the program, with a failure,
// when one stays.
void CloseDialogs(DWORD thread);

// What a message box shows.
struct BoxContents {
  std::vector<std::wstring> texts;    // of its labels that are not empty
  std::vector<std::wstring> buttons;  // from left to right, without the "&" of their access keys
  HICON icon = nullptr;
  HWND owner = nullptr;
  bool owner_enabled = true;
};

BoxContents ReadBox(HWND box);

}  // namespace kesp
