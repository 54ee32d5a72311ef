// Reads a message box of another thread and presses its buttons.
#include "box_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

namespace kesp {

namespace {

constexpr DWORD kDeadlineMs = 10000;
constexpr DWORD kPollMs = 10;

// Polls until the condition holds; false when the time is up first.
template <typename Condition>
bool WaitFor(Condition condition) {
  const DWORD start = GetTickCount();
  while (!condition()) {
    if (GetTickCount() - start > kDeadlineMs) return false;
    Sleep(kPollMs);
  }
  return true;
}

// The text that a window of another thread has or gives; a limit keeps a hung thread from hanging us.
std::wstring TextOf(HWND window) {
  std::array<wchar_t, 1024> text{};
  DWORD_PTR length = 0;
  SendMessageTimeoutW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()),
                      SMTO_ABORTIFHUNG, 2000, &length);
  return text.data();
}

bool HasClass(HWND window, const wchar_t* name) {
  std::array<wchar_t, 64> text{};
  GetClassNameW(window, text.data(), static_cast<int>(text.size()));
  return lstrcmpiW(text.data(), name) == 0;
}

std::vector<HWND> ChildrenOf(HWND parent) {
  std::vector<HWND> children;
  for (HWND child = GetWindow(parent, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
    if (IsWindowVisible(child) != FALSE) children.push_back(child);
  }
  std::sort(children.begin(), children.end(), [](HWND left, HWND right) {
    RECT a{};
    RECT b{};
    GetWindowRect(left, &a);
    GetWindowRect(right, &b);
    return a.left < b.left;
  });
  return children;
}

std::wstring WithoutAccessKey(std::wstring text) {
  std::erase(text, L'&');
  return text;
}

void ReadLabel(HWND label, BoxContents& contents) {
  if ((GetWindowLongPtrW(label, GWL_STYLE) & SS_TYPEMASK) == SS_ICON) {
    DWORD_PTR icon = 0;
    SendMessageTimeoutW(label, STM_GETICON, 0, 0, SMTO_ABORTIFHUNG, 2000, &icon);
    contents.icon = reinterpret_cast<HICON>(icon);
    return;
  }
  const std::wstring text = TextOf(label);
  if (!text.empty()) contents.texts.push_back(text);
}

BoxContents Read(HWND box) {
  BoxContents contents;
  for (HWND child : ChildrenOf(box)) {
    if (HasClass(child, L"Button")) contents.buttons.push_back(WithoutAccessKey(TextOf(child)));
    if (HasClass(child, L"Static")) ReadLabel(child, contents);
  }
  contents.owner = GetWindow(box, GW_OWNER);
  contents.owner_enabled = contents.owner == nullptr || IsWindowEnabled(contents.owner) != FALSE;
  return contents;
}

BOOL CALLBACK CloseDialog(HWND window, LPARAM /*unused*/) {
  if (HasClass(window, L"#32770")) {
    PostMessageW(window, WM_CLOSE, 0, 0);
    EndDialog(window, 0);
  }
  return TRUE;
}

}  // namespace

BoxReader::BoxReader(std::wstring title, Act act)
    : title_(std::move(title)),
      act_(std::move(act)),
      watched_thread_(GetCurrentThreadId()),
      thread_([this] { Run(); }) {}

BoxReader::~BoxReader() {
  if (thread_.joinable()) thread_.join();
}

const BoxContents& BoxReader::Contents() {
  if (thread_.joinable()) thread_.join();
  EXPECT_TRUE(found_) << "the box did not come";
  EXPECT_TRUE(went_) << "the box had to be closed by force";
  return contents_;
}

HWND BoxReader::Find() const {
  HWND box = FindWindowW(L"#32770", title_.c_str());
  const bool ours = box != nullptr && GetWindowThreadProcessId(box, nullptr) == watched_thread_;
  return ours && IsWindowVisible(box) != FALSE ? box : nullptr;
}

void BoxReader::Run() {
  HWND box = nullptr;
  found_ = WaitFor([&] { return (box = Find()) != nullptr; });
  if (found_) {
    contents_ = Read(box);
    act_(box);
    went_ = WaitFor([box] { return IsWindow(box) == FALSE; });
  }
  if (went_) return;
  EnumThreadWindows(watched_thread_, &CloseDialog, 0);
  if (WaitFor([this] { return Find() == nullptr; })) return;
  std::fputs("A message box cannot be closed; giving up.\n", stderr);
  std::fflush(nullptr);
  std::_Exit(EXIT_FAILURE);
}

BoxReader::Act Press(int button) {
  return [button](HWND box) { PostMessageW(GetDlgItem(box, button), BM_CLICK, 0, 0); };
}

}  // namespace kesp
