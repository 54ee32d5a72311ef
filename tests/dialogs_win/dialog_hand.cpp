// A hand at another program's dialog: finds it by its title, types and chooses as it is told, and presses a
// button.
#include <windows.h>

#include <array>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "support/window_list_win.h"
#include "window_reading.h"

namespace kesp {
namespace {

constexpr char kUsage[] =
    "usage: kesp-dialog-hand TITLE [STEP...]\n\n"
    "Waits for a dialog with that title, of whichever program, carries out the steps in their order, and "
    "waits\n"
    "until the dialog is gone. Where one fails, it says why, closes the dialog and ends with 1.\n\n"
    "  at LABEL      goes to the control behind the label\n"
    "  type TEXT     presses the keys of the text\n"
    "  choose ENTRY  goes to that entry of a list\n"
    "  press BUTTON  clicks the button with that caption\n";

// The program that shows the dialog is started at the same time, on a machine that may be busy.
constexpr DWORD kStartDeadlineMs = 40000;

// What could not be done, as a sentence that names it.
class Stuck : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

std::string Narrow(const std::wstring& text) {
  return {text.begin(), text.end()};
}

std::string Quoted(const std::wstring& text) {
  return "\"" + Narrow(text) + "\"";
}

std::wstring PlainCaption(HWND window) {
  std::wstring text = WindowText(window);
  std::erase(text, L'&');
  return text;
}

// Of the visible windows on the screen or, with a parent, within it; null for none.
HWND Find(HWND parent, const wchar_t* class_name, const std::wstring& text) {
  for (HWND window : DescendantsOf(parent != nullptr ? parent : GetDesktopWindow())) {
    if (HasClass(window, class_name) && IsWindowVisible(window) != FALSE && PlainCaption(window) == text)
      return window;
  }
  return nullptr;
}

class DialogHand {
 public:
  explicit DialogHand(const std::wstring& title) {
    const auto came = [&] { return (dialog_ = Find(nullptr, L"#32770", title)) != nullptr; };
    if (!WaitFor(came, kStartDeadlineMs)) {
      throw Stuck("no dialog came that is called " + Quoted(title));
    }
    std::printf("dialog:      %ls\n", title.c_str());
    thread_ = GetWindowThreadProcessId(dialog_, nullptr);
    // A dialog that takes posted messages is filled.
    GoTo(GetDlgItem(dialog_, IDOK));
  }

  void Do(const std::wstring& verb, const std::wstring& object) {
    if (verb == L"at") {
      GoTo(ControlBehind(object));
    } else if (verb == L"type") {
      for (const wchar_t character : object) Ask(Focus(), WM_CHAR, character, 1);
    } else if (verb == L"choose") {
      Choose(object);
    } else if (verb == L"press") {
      HWND button = Find(dialog_, L"Button", object);
      if (button == nullptr) throw Stuck("the dialog has no button " + Quoted(object));
      // It may open a box, and return when that is gone.
      PostMessageW(button, BM_CLICK, 0, 0);
    } else {
      throw Stuck(Quoted(verb) + " is not a step");
    }
    std::printf("  %-10ls %ls\n", verb.c_str(), object.c_str());
  }

  void AwaitEnd() const {
    if (WaitFor([this] { return IsWindow(dialog_) == FALSE; })) return;
    HWND box = GetLastActivePopup(dialog_);
    if (box == dialog_) throw Stuck("the dialog stays open");
    std::string said;
    for (const std::wstring& text : ReadBox(box).texts) said += " " + Quoted(text);
    throw Stuck("the dialog stays open behind a box that says" + said);
  }

  // Closes the dialog, and first what is in front of it.
  void Abandon() const {
    WaitFor([this] {
      if (IsWindow(dialog_) != FALSE) PostMessageW(GetLastActivePopup(dialog_), WM_CLOSE, 0, 0);
      return IsWindow(dialog_) == FALSE;
    });
  }

 private:
  HWND Focus() const { return FocusOf(thread_); }

  void GoTo(HWND control) const {
    PostMessageW(dialog_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control), TRUE);
    const auto has_focus = [&] { return Focus() == control || IsChild(control, Focus()) != FALSE; };
    if (!WaitFor(has_focus)) throw Stuck("the control does not take the keyboard");
  }

  HWND ControlBehind(const std::wstring& label) const {
    HWND control = Find(dialog_, L"Static", label);
    if (control == nullptr) throw Stuck("the dialog has no label " + Quoted(label));
    while ((control = GetWindow(control, GW_HWNDNEXT)) != nullptr) {
      if ((GetWindowLongPtrW(control, GWL_STYLE) & WS_TABSTOP) != 0) return control;
    }
    throw Stuck("nothing is behind the label " + Quoted(label));
  }

  void Choose(const std::wstring& entry) const {
    HWND list = Focus();
    const LRESULT count = Ask(list, CB_GETCOUNT);
    Ask(list, WM_KEYDOWN, VK_HOME, 1);
    for (LRESULT index = 0; index < count; ++index) {
      std::array<wchar_t, 256> text{};
      Ask(list, CB_GETLBTEXT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(text.data()));
      if (text.data() == entry && Ask(list, CB_GETCURSEL) == index) return;
      Ask(list, WM_KEYDOWN, VK_DOWN, 1);
    }
    throw Stuck("the list has no entry " + Quoted(entry));
  }

  HWND dialog_ = nullptr;
  DWORD thread_ = 0;
};

}  // namespace
}  // namespace kesp

int wmain(int count, wchar_t** arguments) {
  if (count < 2 || count % 2 != 0) {
    std::fputs(kesp::kUsage, stderr);
    return 2;
  }
  try {
    kesp::DialogHand hand(arguments[1]);
    try {
      for (int index = 2; index < count; index += 2) hand.Do(arguments[index], arguments[index + 1]);
      hand.AwaitEnd();
    } catch (const kesp::Stuck&) {
      hand.Abandon();
      throw;
    }
  } catch (const kesp::Stuck& stuck) {
    std::fprintf(stderr, "kesp-dialog-hand: %s\n", stuck.what());
    return 1;
  }
  return 0;
}
