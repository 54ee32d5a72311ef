// Somebody at the screen: looks at a dialog of another thread, types, clicks, and answers message boxes.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "window_reading.h"

namespace kesp {

// Waits on a thread of its own for a dialog with that caption, on the thread that made the user, and does
// `act` with it. What it does goes through the thread's message queue as a user's keys and clicks do; each
// member returns when that has been worked off. Whatever goes wrong, the dialog is closed at the deadline, so
// that the thread under test goes on; in the last resort the program ends with a failure.
class DialogUser {
 public:
  using Act = std::function<void(DialogUser&)>;

  DialogUser(std::wstring caption, Act act);

  // Waits until the dialog is gone. Fails the test when it did not come, or did not go by itself.
  ~DialogUser();
  DialogUser(const DialogUser&) = delete;
  DialogUser& operator=(const DialogUser&) = delete;

  // The members below are for `act`. ----------------------------------------------------------------------

  HWND window() const { return window_; }

  // The control of that number on the dialog or one of its pages; fails the test when there is none.
  HWND Control(int id) const;
  bool Has(int id) const;
  std::wstring Text(int id) const { return WindowText(Control(id)); }
  bool IsEnabled(int id) const { return IsWindowEnabled(Control(id)) != FALSE; }
  // Whether it can be seen: it and the page that it is on.
  bool IsVisible(int id) const { return IsWindowVisible(Control(id)) != FALSE; }
  bool IsChecked(int id) const;
  // Whether the Tab key stops at it.
  bool IsTabStop(int id) const;

  // The control that has the keyboard; 0 for none.
  int Focus() const;
  // The selected part of a text box: its first character, and the one after its last.
  std::pair<DWORD, DWORD> SelectedText(int id) const;

  // A list: its entries, and which one is selected; -1 for none.
  std::vector<std::wstring> Entries(int id) const;
  int Selection(int id) const;
  // The tabs, and which one is selected.
  std::vector<std::wstring> Tabs() const;
  int Tab() const;

  // The texts of everything with a text that can be seen now and that nobody types into: labels, check boxes,
  // options and buttons, in their order on the dialog; with the "&" of access keys.
  std::vector<std::wstring> Captions() const;
  // The label by which a screen reader names the control: the one before it.
  std::wstring NameOf(int id) const;
  // What appears when the mouse rests on it; empty for nothing.
  std::wstring ToolTip(int id) const;
  // The lowest and the highest number that a pair of arrows steps to.
  std::pair<int, int> Range(int id) const;

  // A click with the left mouse button in the middle of a control, or on a tab.
  void Click(int id);
  void ClickTab(int index);
  // A click on the upper or the lower one of a pair of arrows.
  void ClickArrow(int id, bool up);
  // A key pressed and released where the focus is, and characters one after the other.
  void Press(UINT key);
  void PressWith(const std::vector<UINT>& modifiers, UINT key);
  // Alt with a letter.
  void PressAlt(wchar_t letter);
  void Type(const std::wstring& text);
  // Opens a list by its keys, goes to the entry, and closes it.
  void Choose(int id, int index);
  // Gives a control the focus, as the Tab key would.
  void MoveTo(int id);
  void CloseByTitleBar();

  // Waits for a message box with that title, reads it and presses a button (IDOK, IDYES, ...); it is gone
  // then.
  BoxContents AnswerBox(const std::wstring& title, int button);

  // Another dialog of the same thread, opened by this one: waits for it, does `act` with it as the window,
  // and waits until it is gone.
  void In(const std::wstring& caption, const Act& act);

  // Waits until the thread under test has worked off all that was posted.
  void Settle() const;

 private:
  void Run();
  // A dialog or a box that stands above the window; null and a failed test when none came.
  HWND AwaitInner(const std::wstring& caption) const;
  void AwaitEndOf(HWND inner) const;
  void Post(HWND window, UINT message, WPARAM first, LPARAM second) const;
  void PostClick(HWND window, POINT at) const;
  // Where keys go: the window with the focus, or the dialog.
  HWND KeyboardWindow() const;
  void PostKey(UINT key) const;

  std::wstring caption_;
  Act act_;
  DWORD watched_thread_;
  HWND signal_;  // of the watched thread
  HWND window_ = nullptr;
  bool came_ = false;
  bool went_ = false;
  std::thread thread_;
};

}  // namespace kesp
