// A hand at the setup program's wizard: goes from page to page by the button that leads on, and answers the
// boxes on its way.
#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

#include "support/window_list_win.h"
#include "window_reading.h"

namespace kesp {
namespace {

constexpr char kUsage[] =
    "usage: wizard_hand TITLE CHOICE [ANSWER...]\n\n"
    "Waits for the wizard and prints the texts of its pages and boxes. CHOICE is a button that is pressed on "
    "its page "
    "(- for none). Each ANSWER is the button of one box. "
    "Where a box\n"
    "keeps the wizard at its page, it is cancelled. Ends with 1 when a box has no answer or the wizard does "
    "not end.\n";
constexpr DWORD kDeadlineMs = 90000;
constexpr int kNextButton = 1;

std::wstring PlainCaption(HWND window) {
  std::wstring text = WindowText(window);
  std::erase(text, L'&');
  return text;
}

HWND Find(HWND parent, const wchar_t* class_name, const std::wstring& text) {
  for (HWND window : DescendantsOf(parent)) {
    const bool is_it = HasClass(window, class_name) && IsWindowVisible(window) != FALSE;
    if (is_it && (text.empty() || PlainCaption(window) == text)) return window;
  }
  return nullptr;
}

std::vector<std::wstring> TextsOf(HWND parent) {
  std::vector<std::wstring> texts;
  for (HWND window : DescendantsOf(parent)) {
    const std::wstring text = PlainCaption(window);
    if (IsWindowVisible(window) != FALSE && !text.empty()) texts.push_back(text);
  }
  return texts;
}

// A page is shown a moment after it is there.
void PrintTexts(const char* kind, HWND parent) {
  constexpr DWORD kShownMs = 500;
  Sleep(kShownMs);
  std::printf("%s:", kind);
  for (const std::wstring& text : TextsOf(parent)) std::printf(" [%ls]", text.c_str());
  std::printf("\n");
}

class WizardHand {
 public:
  WizardHand(HWND wizard, std::wstring choice, std::vector<std::wstring> answers)
      : wizard_(wizard), choice_(std::move(choice)), answers_(std::move(answers)) {}

  // Whether the wizard came to its end.
  bool Run() {
    return WaitFor([this] { return is_stuck_ || IsWindow(wizard_) == FALSE || !Step(); }, kDeadlineMs) &&
           !is_stuck_;
  }

 private:
  // Always true, so that it is called again.
  bool Step() {
    HWND box = GetLastActivePopup(wizard_);
    if (box != wizard_ && IsWindowVisible(box) != FALSE) {
      Answer(box);
    } else if (HWND page = Find(wizard_, L"#32770", L""); page != nullptr) {
      page == page_ ? StayAt() : GoOnFrom(page);
    }
    return true;
  }

  void GoOnFrom(HWND page) {
    HWND next = GetDlgItem(wizard_, kNextButton);
    if (IsWindowEnabled(next) == FALSE) return;
    PrintTexts("page", wizard_);
    page_ = page;
    was_answered_ = false;
    HWND choice = Find(wizard_, L"Button", choice_);
    if (choice != nullptr) SendMessageW(choice, BM_CLICK, 0, 0);
    // What it would open stays open behind the test.
    HWND open = Find(wizard_, L"Button", L"Open the first steps");
    if (open != nullptr) PostMessageW(open, BM_CLICK, 0, 0);
    PostMessageW(next, BM_CLICK, 0, 0);
  }

  void StayAt() {
    if (!was_answered_) return;
    was_answered_ = false;
    PostMessageW(GetDlgItem(wizard_, IDCANCEL), BM_CLICK, 0, 0);
  }

  void Answer(HWND box) {
    PrintTexts("box", box);
    is_stuck_ = next_answer_ == answers_.size();
    HWND button = is_stuck_ ? nullptr : Find(box, L"Button", answers_[next_answer_++]);
    is_stuck_ = button == nullptr;
    if (is_stuck_) return;
    PostMessageW(button, BM_CLICK, 0, 0);
    WaitFor([box] { return IsWindow(box) == FALSE; });
    // Time for the next page to come.
    Sleep(500);
    was_answered_ = true;
  }

  HWND wizard_;
  HWND page_ = nullptr;
  std::wstring choice_;
  std::vector<std::wstring> answers_;
  std::size_t next_answer_ = 0;
  bool was_answered_ = false;
  bool is_stuck_ = false;
};

int Main(int count, wchar_t** words) {
  if (count < 3) return std::fputs(kUsage, stderr), 2;
  HWND wizard = nullptr;
  WaitFor([&] { return (wizard = Find(GetDesktopWindow(), L"#32770", words[1])) != nullptr; }, kDeadlineMs);
  if (wizard == nullptr) return std::puts("the wizard did not come"), 1;
  if (WizardHand(wizard, words[2], {words + 3, words + count}).Run()) return 0;
  DWORD process = 0;
  GetWindowThreadProcessId(wizard, &process);
  HANDLE handle = OpenProcess(PROCESS_TERMINATE, FALSE, process);
  TerminateProcess(handle, 99);
  CloseHandle(handle);
  return std::puts("the wizard did not end"), 1;
}

}  // namespace
}  // namespace kesp

int wmain(int count, wchar_t** words) {
  return kesp::Main(count, words);
}
