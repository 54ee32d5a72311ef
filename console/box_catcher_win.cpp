// A hook that sees boxes before the user does.
#include "console/box_catcher_win.h"

#include <array>
#include <string>

#include "console/error_box_text.h"
#include "console/wide_text_win.h"

namespace kesp::console {
namespace {

constexpr wchar_t kTitle[] = L"Kesp Communications Error";
// Of the text in a message box.
constexpr int kTextId = 0xFFFF;
constexpr int kLongestText = 4096;

thread_local BoxCatcher* catcher = nullptr;

std::wstring TextOf(HWND window) {
  std::array<wchar_t, kLongestText> text{};
  const int length = GetWindowTextW(window, text.data(), kLongestText);
  return {text.data(), static_cast<std::size_t>(length)};
}

}  // namespace

BoxCatcher::BoxCatcher()
    : hook_(SetWindowsHookExW(WH_CALLWNDPROCRET, OnMessage, nullptr, GetCurrentThreadId())) {
  catcher = this;
}

BoxCatcher::~BoxCatcher() {
  UnhookWindowsHookEx(hook_);
  catcher = nullptr;
}

LRESULT CALLBACK BoxCatcher::OnMessage(int code, WPARAM wparam, LPARAM lparam) {
  const auto& message = *reinterpret_cast<const CWPRETSTRUCT*>(lparam);
  // Its controls have their texts by now, and it is not shown yet.
  if (code == HC_ACTION && catcher != nullptr && message.message == WM_INITDIALOG &&
      TextOf(message.hwnd) == kTitle)
    catcher->Read(message.hwnd);
  return CallNextHookEx(nullptr, code, wparam, lparam);
}

void BoxCatcher::Read(HWND box) {
  caught_ = ErrorOfBox(ToUtf8(TextOf(GetDlgItem(box, kTextId))));
  EndDialog(box, IDOK);
}

}  // namespace kesp::console
