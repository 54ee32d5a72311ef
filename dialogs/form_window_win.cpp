// A form's window, from its making to its end.
#include "dialogs/form_window_win.h"

#include <stdexcept>
#include <string>

#include "dialogs/activation_context_win.h"
#include "dialogs/dialog_template_win.h"
#include "dialogs/page_gap_win.h"
#include "dialogs/window_place_win.h"
#include "support/thread_modal_win.h"

namespace kesp {

FormWindow::FormWindow(Form& form, const FormResources& resources, HWND owner)
    : form_(form), resources_(resources), owner_(owner) {}

FormWindow::~FormWindow() {
  Destroy();
}

void FormWindow::Destroy() {
  form_.SetView(nullptr);
  edits_.clear();
  if (dialog_ != nullptr) DestroyWindow(dialog_);
}

void FormWindow::ShowModal() {
  HWND focus = GetFocus();
  Make();
  {
    // The other windows are enabled again before this one goes, so that the owner is the one to become
    // active.
    const ThreadModal modal(dialog_);
    PlaceOver(dialog_, owner_);
    // ShowWindow would show the first window of a program as its starter wished, perhaps not at all.
    SetWindowPos(dialog_, nullptr, 0, 0, 0, 0, SWP_SHOWWINDOW | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER);
    // Nobody could close it.
    if (IsWindowVisible(dialog_) == FALSE) throw std::runtime_error("The dialog's window cannot be shown");
    if (owner_ == nullptr) SetForegroundWindow(dialog_);
    FocusFirst();
    RedrawWindow(dialog_, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    form_.FirstPaint();
    // What was loaded may have disabled the control that had the focus, and nothing has it then.
    if (form_.focused() == nullptr || IsChild(dialog_, GetFocus()) == FALSE) FocusFirst();
    RunLoop();
  }
  Destroy();
  // An owner that is no dialog does not remember which of its controls had the focus.
  if (owner_ != nullptr && GetActiveWindow() == owner_ && IsChild(owner_, focus) != FALSE) SetFocus(focus);
}

void FormWindow::Make() {
  const ActivationContext controls;
  dialog_ = MakeDialog(resources_.dialog, owner_);
  SetWindowTextW(dialog_, form_.caption().c_str());
  MakePages();
  BindControls();
  BindTextBoxes();
  CloseGaps();
  AddToolTips();
  form_.SetView(this);
}

HWND FormWindow::MakeDialog(int resource, HWND parent) {
  const std::vector<std::uint8_t> dialog = DialogInSystemFont(resource);
  HWND window = CreateDialogIndirectParamW(ThisModule(), reinterpret_cast<const DLGTEMPLATE*>(dialog.data()),
                                           parent, &FormWindow::Procedure, reinterpret_cast<LPARAM>(this));
  if (window == nullptr) {
    throw std::runtime_error("The dialog's window cannot be made: system error " +
                             std::to_string(GetLastError()));
  }
  // One that does not know its form can neither be used nor closed.
  if (GetWindowLongPtrW(window, DWLP_USER) != reinterpret_cast<LONG_PTR>(this)) {
    DestroyWindow(window);
    throw std::runtime_error("The dialog's window cannot be made: it cannot be told of its form");
  }
  return window;
}

void FormWindow::MakePages() {
  HWND strip = GetDlgItem(dialog_, form_.tabSettings.id());
  painter_.SetWindow(form_.tabSettings, strip);
  painter_.DrawAll(form_.tabSettings);
  RECT area{};
  GetClientRect(strip, &area);
  TabCtrl_AdjustRect(strip, FALSE, &area);
  MapWindowPoints(strip, dialog_, reinterpret_cast<POINT*>(&area), 2);
  pages_.assign(resources_.pages.size(), nullptr);
  for (const TabStrip::Tab& tab : form_.tabSettings.tabs()) {
    const auto page = static_cast<std::size_t>(tab.tag);
    pages_[page] = MakeDialog(resources_.pages[page], dialog_);
    // Before the buttons and the tabs: not painted over, and the first that the Tab key comes to.
    SetWindowPos(pages_[page], HWND_TOP, area.left, area.top, area.right - area.left, area.bottom - area.top,
                 SWP_NOACTIVATE);
    painter_.SetWindow(form_.framSettings[page], pages_[page]);
  }
}

void FormWindow::BindControls() {
  for (Control* control : form_.controls()) {
    if (painter_.WindowOf(*control) != nullptr) continue;
    HWND parent = control->page() == kEveryPage ? dialog_ : pages_[static_cast<std::size_t>(control->page())];
    HWND window = parent == nullptr ? nullptr : GetDlgItem(parent, control->id());
    if (window == nullptr) continue;
    painter_.SetWindow(*control, window);
    const auto images = resources_.images.find(control->id());
    if (images != resources_.images.end()) painter_.SetImages(*control, images_.emplace_back(images->second));
  }
  for (const Control* control : form_.controls()) painter_.DrawAll(*control);
}

void FormWindow::BindTextBoxes() {
  for (Control* control : form_.controls()) {
    auto* box = dynamic_cast<TextBox*>(control);
    HWND window = painter_.WindowOf(*control);
    if (box != nullptr && window != nullptr) edits_.emplace_back(form_, *box, window, dialog_);
  }
}

void FormWindow::CloseGaps() const {
  for (const Control* control : form_.controls()) {
    HWND window = painter_.WindowOf(*control);
    if (window != nullptr && !control->visible() && control->page() != kEveryPage) CloseGapOf(window);
  }
}

void FormWindow::AddToolTips() {
  HWND tips =
      CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP, CW_USEDEFAULT,
                      CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, dialog_, nullptr, ThisModule(), nullptr);
  for (const Control* control : form_.controls()) {
    const auto* box = dynamic_cast<const CheckBox*>(control);
    HWND window = painter_.WindowOf(*control);
    if (box == nullptr || window == nullptr || box->tool_tip().empty()) continue;
    TTTOOLINFOW tool{};
    // The size that every version of the controls knows.
    tool.cbSize = TTTOOLINFOW_V2_SIZE;
    tool.uFlags = TTF_SUBCLASS | TTF_IDISHWND;
    tool.hwnd = GetParent(window);
    tool.uId = reinterpret_cast<UINT_PTR>(window);
    tool.lpszText = const_cast<wchar_t*>(box->tool_tip().c_str());
    SendMessageW(tips, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
  }
}

HWND FormWindow::VisiblePage() const {
  const TabStrip& strip = form_.tabSettings;
  return pages_[static_cast<std::size_t>(strip.tabs()[strip.selection()].tag)];
}

// As the Tab key does, with the default button that belongs to it.
void FormWindow::GiveFocus(HWND window) const {
  SendMessageW(dialog_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(window), TRUE);
}

void FormWindow::FocusFirst() const {
  HWND first = GetNextDlgTabItem(VisiblePage(), nullptr, FALSE);
  if (first != nullptr) GiveFocus(first);
}

void FormWindow::OnFocus(const Control& control) {
  HWND window = painter_.WindowOf(control);
  if (window == nullptr || IsWindowEnabled(window) == FALSE) {
    // The focus must not stay behind on a page that is not seen any more.
    FocusFirst();
    return;
  }
  GiveFocus(window);
}

void FormWindow::RunLoop() {
  while (form_.is_open()) {
    MSG message{};
    const BOOL got = GetMessageW(&message, nullptr, 0, 0);
    if (got <= 0) {
      form_.Close();
      // The client's own loop is to end, too.
      if (got == 0) PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    if (IsPageKey(message)) {
      StepPage(message);
    } else if (IsDialogMessageW(dialog_, &message) == FALSE) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
  }
}

}  // namespace kesp
