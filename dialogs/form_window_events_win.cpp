// What Windows reports to a form's window, and what of it the form is told.
#include <array>
#include <string>
#include <utility>

#include "dialogs/form_window_win.h"
#include "support/user_surface_win.h"
#include "support/window_list_win.h"

namespace kesp {

namespace {

std::wstring TextOf(HWND window) {
  std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  text.resize(static_cast<std::size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
  return text;
}

bool IsDown(int key) {
  return (GetKeyState(key) & 0x8000) != 0;
}

}  // namespace

INT_PTR CALLBACK FormWindow::Procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrW(window, DWLP_USER, second);
    // The focus is set when the window is shown.
    return FALSE;
  }
  auto* self = reinterpret_cast<FormWindow*>(GetWindowLongPtrW(window, DWLP_USER));
  if (self == nullptr) return FALSE;
  const bool was_open = self->form_.is_open();
  INT_PTR result = FALSE;
  try {
    result = self->Handle(window, message, first, second);
  } catch (...) {
    // No exception may pass through the system. The form shows its own failures; this is memory at its end.
  }
  // A message that was sent and not posted leaves the loop waiting for the next one, perhaps for long.
  if (was_open && !self->form_.is_open()) PostThreadMessageW(GetCurrentThreadId(), WM_NULL, 0, 0);
  return result;
}

INT_PTR FormWindow::Handle(HWND window, UINT message, WPARAM first, LPARAM second) {
  switch (message) {
    case WM_COMMAND:
      OnCommand(LOWORD(first), HIWORD(first));
      return TRUE;
    case WM_NOTIFY: {
      const auto& notice = *reinterpret_cast<const NMHDR*>(second);
      if (notice.code != static_cast<UINT>(TCN_SELCHANGE)) return FALSE;
      OnTabChosen(static_cast<std::size_t>(TabCtrl_GetCurSel(notice.hwndFrom)));
      return TRUE;
    }
    case WM_HELP:
      OnClick(form_.cmdOKCancelHelp[Form::kHelp]);
      return TRUE;
    case WM_CLOSE:
      form_.Close();
      return TRUE;
    case WM_SETCURSOR:
      // Asked by the controls, too, before they set their own.
      if (PointerOfThread() == MousePointer::kDefault) return FALSE;
      ShowPointer(PointerOfThread());
      SetWindowLongPtrW(window, DWLP_MSGRESULT, TRUE);
      return TRUE;
    case WM_DRAWITEM:
      painter_.DrawItem(*reinterpret_cast<const DRAWITEMSTRUCT*>(second));
      return TRUE;
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN:
      return reinterpret_cast<INT_PTR>(
          BackgroundFor(window, reinterpret_cast<HWND>(second), reinterpret_cast<HDC>(first)));
    case WM_SYSCOLORCHANGE:
      backgrounds_.erase(window);
      if (window == dialog_) OnColorsChanged(first, second);
      return FALSE;
    case WM_SIZE:
    case WM_THEMECHANGED:
      backgrounds_.erase(window);
      return FALSE;
    case WM_DESTROY:
      if (window == dialog_) {
        dialog_ = nullptr;
        form_.Close();
      }
      return FALSE;
    default:
      return FALSE;
  }
}

void FormWindow::OnCommand(int id, int code) {
  Control* control = FindControl(id);
  if (control == nullptr || painter_.is_drawing()) return;
  if (auto* box = dynamic_cast<TextBox*>(control)) {
    if (code == EN_CHANGE) box->Type(TextOf(painter_.WindowOf(*box)));
  } else if (auto* list = dynamic_cast<ChoiceList*>(control)) {
    OnListNotice(*list, code);
  } else if (code == BN_CLICKED && !IsOnlyFocused(*control)) {
    OnClick(*control);
  }
}

void FormWindow::OnClick(Control& control) {
  form_.Use([&control] {
    if (auto* button = dynamic_cast<Button*>(&control)) button->Click();
    if (auto* box = dynamic_cast<CheckBox*>(&control)) box->Click();
    if (auto* option = dynamic_cast<OptionButton*>(&control)) option->Click();
  });
  // Windows has marked the control already, and its neighbours; the form need not have followed.
  for (const Control* each : form_.controls()) painter_.Draw(*each, Change::kChecked);
}

// An option reports a click also when it gets the focus unchecked. One that was clicked is checked by then.
bool FormWindow::IsOnlyFocused(const Control& control) const {
  return dynamic_cast<const OptionButton*>(&control) != nullptr &&
         SendMessageW(painter_.WindowOf(control), BM_GETCHECK, 0, 0) == BST_UNCHECKED;
}

void FormWindow::OnListNotice(ChoiceList& list, int code) {
  const LRESULT index = SendMessageW(painter_.WindowOf(list), CB_GETCURSEL, 0, 0);
  if (index < 0) return;
  const auto chosen = static_cast<std::size_t>(index);
  if (code == CBN_DROPDOWN) told_by_closing_ = nullptr;
  // A list that closes may have gone back to another entry without saying so, or be about to say so.
  const bool closed_elsewhere = code == CBN_CLOSEUP && list.selection() != chosen;
  const bool told_already = std::exchange(told_by_closing_, nullptr) == &list && list.selection() == chosen;
  if (closed_elsewhere) told_by_closing_ = &list;
  if (!closed_elsewhere && (code != CBN_SELCHANGE || told_already)) return;
  form_.Use([&] { list.Choose(chosen); });
  painter_.Draw(list, Change::kSelection);
}

void FormWindow::OnTabChosen(std::size_t index) {
  // The page that goes takes no focus with it.
  HWND focus = GetFocus();
  for (HWND page : pages_) {
    if (page != nullptr && IsChild(page, focus) != FALSE) SetFocus(painter_.WindowOf(form_.tabSettings));
  }
  form_.Use([&] { form_.tabSettings.Choose(index); });
  painter_.Draw(form_.tabSettings, Change::kSelection);
}

bool FormWindow::IsPageKey(const MSG& message) const {
  const bool key = message.wParam == VK_TAB || message.wParam == VK_NEXT || message.wParam == VK_PRIOR;
  return message.message == WM_KEYDOWN && key && IsDown(VK_CONTROL) && !IsDown(VK_MENU) &&
         IsChild(dialog_, message.hwnd) != FALSE;
}

void FormWindow::StepPage(const MSG& message) {
  const std::size_t count = form_.tabSettings.tabs().size();
  const bool backwards = message.wParam == VK_PRIOR || (message.wParam == VK_TAB && IsDown(VK_SHIFT));
  OnTabChosen((form_.tabSettings.selection() + (backwards ? count - 1 : 1)) % count);
  FocusFirst();
}

// The system tells the dialog alone; its pages and their controls have colors of their own to renew.
void FormWindow::OnColorsChanged(WPARAM first, LPARAM second) {
  for (HWND child : DescendantsOf(dialog_)) SendMessageW(child, WM_SYSCOLORCHANGE, first, second);
}

HBRUSH FormWindow::BackgroundFor(HWND page, HWND window, HDC device) {
  // A text box that is disabled asks as labels do, and keeps the grey that shows it.
  const bool own_ground =
      page == dialog_ || dynamic_cast<TextBox*>(FindControl(GetDlgCtrlID(window))) != nullptr;
  return own_ground ? nullptr : backgrounds_[page].BrushFor(page, window, device);
}

Control* FormWindow::FindControl(int id) const {
  for (Control* control : form_.controls()) {
    if (control->id() == id) return control;
  }
  return nullptr;
}

}  // namespace kesp
