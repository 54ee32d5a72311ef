// What somebody at the screen sees of a dialog.
#include <gtest/gtest.h>

#include <array>

#include "dialog_user.h"
#include "dialogs/common_controls_win.h"
#include "support/window_list_win.h"

namespace kesp {

namespace {

HWND FindControl(HWND dialog, int id) {
  for (HWND window : DescendantsOf(dialog)) {
    if (GetDlgCtrlID(window) == id) return window;
  }
  return nullptr;
}

struct TipsSearch {
  HWND owner;
  HWND found;
};

BOOL CALLBACK IsTheTips(HWND window, LPARAM search) {
  auto& wanted = *reinterpret_cast<TipsSearch*>(search);
  if (!HasClass(window, TOOLTIPS_CLASSW) || GetWindow(window, GW_OWNER) != wanted.owner) return TRUE;
  wanted.found = window;
  return FALSE;
}

}  // namespace

HWND DialogUser::Control(int id) const {
  HWND control = FindControl(window_, id);
  EXPECT_NE(control, nullptr) << "no control has the number " << id;
  return control;
}

bool DialogUser::Has(int id) const {
  return FindControl(window_, id) != nullptr;
}

bool DialogUser::IsChecked(int id) const {
  return Ask(Control(id), BM_GETCHECK) == BST_CHECKED;
}

bool DialogUser::IsTabStop(int id) const {
  return (GetWindowLongPtrW(Control(id), GWL_STYLE) & WS_TABSTOP) != 0;
}

int DialogUser::Focus() const {
  for (HWND window = FocusOf(watched_thread_); window != nullptr && window != window_;
       window = GetParent(window)) {
    if (GetDlgCtrlID(window) > 0) return GetDlgCtrlID(window);
  }
  return 0;
}

std::pair<DWORD, DWORD> DialogUser::SelectedText(int id) const {
  const auto range = static_cast<DWORD>(Ask(Control(id), EM_GETSEL));
  return {LOWORD(range), HIWORD(range)};
}

std::vector<std::wstring> DialogUser::Entries(int id) const {
  std::vector<std::wstring> entries;
  HWND list = Control(id);
  const LRESULT count = Ask(list, CB_GETCOUNT);
  for (LRESULT index = 0; index < count; ++index) {
    std::array<wchar_t, 256> text{};
    Ask(list, CB_GETLBTEXT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(text.data()));
    entries.emplace_back(text.data());
  }
  return entries;
}

int DialogUser::Selection(int id) const {
  return static_cast<int>(Ask(Control(id), CB_GETCURSEL));
}

std::vector<std::wstring> DialogUser::Tabs() const {
  std::vector<std::wstring> captions;
  HWND strip = FindWindowExW(window_, nullptr, WC_TABCONTROLW, nullptr);
  const LRESULT count = Ask(strip, TCM_GETITEMCOUNT);
  for (LRESULT index = 0; index < count; ++index) {
    std::array<wchar_t, 64> text{};
    TCITEMW item{};
    item.mask = TCIF_TEXT;
    item.pszText = text.data();
    item.cchTextMax = static_cast<int>(text.size());
    Ask(strip, TCM_GETITEMW, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item));
    captions.emplace_back(text.data());
  }
  return captions;
}

int DialogUser::Tab() const {
  return static_cast<int>(Ask(FindWindowExW(window_, nullptr, WC_TABCONTROLW, nullptr), TCM_GETCURSEL));
}

std::vector<std::wstring> DialogUser::Captions() const {
  std::vector<std::wstring> captions;
  for (HWND window : DescendantsOf(window_)) {
    const bool has_caption = HasClass(window, L"Static") || HasClass(window, L"Button");
    if (!has_caption || IsWindowVisible(window) == FALSE) continue;
    if (std::wstring text = WindowText(window); !text.empty()) captions.push_back(std::move(text));
  }
  return captions;
}

std::wstring DialogUser::NameOf(int id) const {
  HWND before = GetWindow(Control(id), GW_HWNDPREV);
  return before != nullptr && HasClass(before, L"Static") ? WindowText(before) : std::wstring();
}

std::wstring DialogUser::ToolTip(int id) const {
  TipsSearch search{window_, nullptr};
  EnumThreadWindows(watched_thread_, &IsTheTips, reinterpret_cast<LPARAM>(&search));
  std::array<wchar_t, 256> text{};
  TTTOOLINFOW tool{};
  tool.cbSize = TTTOOLINFOW_V2_SIZE;
  tool.hwnd = GetParent(Control(id));
  tool.uId = reinterpret_cast<UINT_PTR>(Control(id));
  tool.lpszText = text.data();
  Ask(search.found, TTM_GETTEXTW, text.size(), reinterpret_cast<LPARAM>(&tool));
  return text.data();
}

std::pair<int, int> DialogUser::Range(int id) const {
  int minimum = 0;
  int maximum = 0;
  Ask(Control(id), UDM_GETRANGE32, reinterpret_cast<WPARAM>(&minimum), reinterpret_cast<LPARAM>(&maximum));
  return {minimum, maximum};
}

}  // namespace kesp
