// Message boxes on the real screen, with their Help button bound to a help file, and the mouse pointer.
#include "support/user_surface_win.h"

#include <windows.h>

namespace kesp {

namespace {

// What the Help button of the innermost box of this thread opens. Windows hands its callback a number only.
struct HelpBinding {
  HWND owner;
  const MessageBoxRequest& request;
  HelpOpener open_help;
};
thread_local const HelpBinding* current_help = nullptr;

class HelpScope {
 public:
  explicit HelpScope(const HelpBinding& binding) : outer_(current_help) { current_help = &binding; }
  ~HelpScope() { current_help = outer_; }
  HelpScope(const HelpScope&) = delete;
  HelpScope& operator=(const HelpScope&) = delete;

 private:
  const HelpBinding* outer_;
};

void CALLBACK OpenHelp(HELPINFO* /*info*/) {
  if (current_help == nullptr || current_help->request.help_file.empty()) return;
  try {
    const MessageBoxRequest& request = current_help->request;
    current_help->open_help(current_help->owner, request.help_file, request.help_context);
  } catch (...) {
    // No exception may pass through the system's window procedure; the user sees no help.
  }
}

}  // namespace

int UserSurfaceWin::ShowMessageBox(const MessageBoxRequest& request) {
  HWND owner = GetActiveWindow();
  const HelpBinding binding{owner, request, open_help_};
  const HelpScope scope(binding);
  MSGBOXPARAMSW box{};
  box.cbSize = sizeof(box);
  box.hwndOwner = owner;
  box.lpszText = request.text.c_str();
  box.lpszCaption = request.title.c_str();
  box.dwStyle = request.style | (owner == nullptr ? MB_TASKMODAL : 0U);
  box.dwContextHelpId = static_cast<DWORD_PTR>(static_cast<std::uint32_t>(request.help_context));
  box.lpfnMsgBoxCallback = OpenHelp;
  return MessageBoxIndirectW(&box);
}

void UserSurfaceWin::SetPointer(MousePointer pointer) noexcept {
  const bool busy = pointer == MousePointer::kBusy;
  SetCursor(LoadCursorW(nullptr, busy ? IDC_WAIT : IDC_ARROW));
}

}  // namespace kesp
