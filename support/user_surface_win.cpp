// Message boxes on the real screen, with their Help button bound to a help file, and the mouse pointer.
#include "support/user_surface_win.h"

#include <windows.h>

#include <array>
#include <optional>

#include "support/files_win.h"
#include "support/owner_window_win.h"
#include "support/paths.h"
#include "support/thread_modal_win.h"

namespace kesp {

namespace {

// What the Help button of the innermost box of this thread opens. Windows hands its callback a number only.
struct HelpBinding {
  HWND owner;
  const MessageBoxRequest& request;
  HelpCaller call_help;
};
thread_local const HelpBinding* current_help = nullptr;

thread_local MousePointer pointer_of_thread = MousePointer::kDefault;

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
    current_help->call_help(current_help->owner, request.help_file, HELP_CONTEXT,
                            static_cast<std::uint32_t>(request.help_context));
  } catch (...) {
    // No exception may pass through the system's window procedure; the user sees no help.
  }
}

}  // namespace

MousePointer PointerOfThread() noexcept {
  return pointer_of_thread;
}

void ShowPointer(MousePointer pointer) noexcept {
  const bool busy = pointer == MousePointer::kBusy;
  SetCursor(LoadCursorW(nullptr, busy ? IDC_WAIT : IDC_ARROW));
}

int UserSurfaceWin::ShowMessageBox(const MessageBoxRequest& request) {
  HWND owner = OwnerWindow();
  const HelpBinding binding{owner, request, call_help_};
  const HelpScope scope(binding);
  MSGBOXPARAMSW box{};
  box.cbSize = sizeof(box);
  box.hwndOwner = owner;
  box.lpszText = request.text.c_str();
  box.lpszCaption = request.title.c_str();
  box.dwStyle = request.style | (owner == nullptr ? MB_TASKMODAL : 0U);
  box.dwContextHelpId = static_cast<DWORD_PTR>(static_cast<std::uint32_t>(request.help_context));
  box.lpfnMsgBoxCallback = OpenHelp;
  // As in a task-modal box, the thread's other windows wait, too.
  std::optional<ThreadModal> modal;
  if (owner != GetActiveWindow()) modal.emplace(owner);
  return MessageBoxIndirectW(&box);
}

void UserSurfaceWin::SetPointer(MousePointer pointer) noexcept {
  pointer_of_thread = pointer;
  ShowPointer(pointer);
}

void UserSurfaceWin::SetHelpFile(const std::wstring& path) {
  const std::lock_guard<std::mutex> lock(help_file_mutex_);
  help_file_ = path;
}

std::wstring UserSurfaceWin::HelpFile() {
  const std::lock_guard<std::mutex> lock(help_file_mutex_);
  return help_file_;
}

bool UserSurfaceWin::CallHelp(std::uint32_t command, std::uint32_t data) {
  return call_help_(nullptr, HelpFile(), command, data);
}

std::optional<bool> UserSurfaceWin::CallOwnHelp(std::uint32_t topic) {
  if (!HelpFile().empty()) return std::nullopt;
  FilesWin files;
  const std::wstring own_file = JoinPath(FolderOfPath(files.LibraryFile()), L"KespCommObj.chm");
  if (!files.Exists(own_file)) return std::nullopt;
  return call_help_(nullptr, own_file, HELP_CONTEXT, topic);
}

wchar_t UserSurfaceWin::DecimalSeparator() {
  std::array<wchar_t, 8> separator{};
  const int length = GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, separator.data(),
                                    static_cast<int>(separator.size()));
  return length > 1 ? separator[0] : L'.';
}

}  // namespace kesp
