// What the windows of another thread show.
#include "window_reading.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

namespace kesp {

namespace {

constexpr UINT kAnswerMs = 2000;

std::vector<HWND> ChildrenOf(HWND parent) {
  std::vector<HWND> children;
  for (HWND child = GetWindow(parent, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
    if (IsWindowVisible(child) != FALSE) children.push_back(child);
  }
  std::sort(children.begin(), children.end(),
            [](HWND left, HWND right) { return AreaOf(left).left < AreaOf(right).left; });
  return children;
}

std::wstring WithoutAccessKey(std::wstring text) {
  std::erase(text, L'&');
  return text;
}

void ReadLabel(HWND label, BoxContents& contents) {
  if ((GetWindowLongPtrW(label, GWL_STYLE) & SS_TYPEMASK) == SS_ICON) {
    contents.icon = reinterpret_cast<HICON>(Ask(label, STM_GETICON));
    return;
  }
  const std::wstring text = WindowText(label);
  if (!text.empty()) contents.texts.push_back(text);
}

struct DialogSearch {
  const std::wstring& caption;
  HWND found;
};

BOOL CALLBACK IsTheDialog(HWND window, LPARAM search) {
  auto& wanted = *reinterpret_cast<DialogSearch*>(search);
  if (!HasClass(window, L"#32770") || IsWindowVisible(window) == FALSE) return TRUE;
  if (WindowText(window) != wanted.caption) return TRUE;
  wanted.found = window;
  return FALSE;
}

BOOL CALLBACK CloseDialog(HWND window, LPARAM left) {
  if (HasClass(window, L"#32770") && IsWindowVisible(window) != FALSE) {
    ++*reinterpret_cast<int*>(left);
    PostMessageW(window, WM_CLOSE, 0, 0);
    // Of use to a message box that has no way to be cancelled.
    EndDialog(window, 0);
  }
  return TRUE;
}

}  // namespace

std::wstring WindowText(HWND window) {
  std::array<wchar_t, 1024> text{};
  DWORD_PTR length = 0;
  SendMessageTimeoutW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()),
                      SMTO_ABORTIFHUNG, kAnswerMs, &length);
  return text.data();
}

LRESULT Ask(HWND window, UINT message, WPARAM first, LPARAM second) {
  DWORD_PTR answer = 0;
  SendMessageTimeoutW(window, message, first, second, SMTO_ABORTIFHUNG, kAnswerMs, &answer);
  return static_cast<LRESULT>(answer);
}

bool HasClass(HWND window, const wchar_t* name) {
  std::array<wchar_t, 64> text{};
  GetClassNameW(window, text.data(), static_cast<int>(text.size()));
  return lstrcmpiW(text.data(), name) == 0;
}

HWND FocusOf(DWORD thread) {
  GUITHREADINFO info{};
  info.cbSize = sizeof(info);
  GetGUIThreadInfo(thread, &info);
  return info.hwndFocus;
}

HWND FindDialog(const std::wstring& caption, DWORD thread) {
  DialogSearch search{caption, nullptr};
  EnumThreadWindows(thread, &IsTheDialog, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

void CloseDialogs(DWORD thread) {
  const bool closed = WaitFor([thread] {
    int left = 0;
    EnumThreadWindows(thread, &CloseDialog, reinterpret_cast<LPARAM>(&left));
    return left == 0;
  });
  if (closed) return;
  std::fputs("A dialog cannot be closed; giving up.\n", stderr);
  std::fflush(nullptr);
  std::_Exit(EXIT_FAILURE);
}

BoxContents ReadBox(HWND box) {
  BoxContents contents;
  for (HWND child : ChildrenOf(box)) {
    if (HasClass(child, L"Button")) contents.buttons.push_back(WithoutAccessKey(WindowText(child)));
    if (HasClass(child, L"Static")) ReadLabel(child, contents);
  }
  contents.owner = GetWindow(box, GW_OWNER);
  contents.owner_enabled = contents.owner == nullptr || IsWindowEnabled(contents.owner) != FALSE;
  return contents;
}

}  // namespace kesp
