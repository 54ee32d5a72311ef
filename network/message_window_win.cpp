// The message-only window and its reference-counted window class.
#include "network/message_window_win.h"

#include "network/notification_code.h"

// The base address of the module that holds this code, placed by the linker.
extern "C" IMAGE_DOS_HEADER __ImageBase;  // NOLINT(bugprone-reserved-identifier)

namespace kesp {

namespace {

constexpr wchar_t kClassName[] = L"KespMessageWindow";

SRWLOCK class_lock = SRWLOCK_INIT;
int class_users = 0;

// The handler, and so the window too, may be gone when this returns.
void Deliver(MessageHandler& handler, UINT message, WPARAM wparam, LPARAM lparam) noexcept {
  try {
    const std::shared_ptr<void> alive = handler.KeepAlive();
    handler.OnMessage(message, wparam, lparam);
  } catch (...) {
    // Nothing may be thrown through the system's dispatcher.
  }
}

LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (!NotificationCode::IsOne(message)) return DefWindowProcW(window, message, wparam, lparam);
  auto* const handler = reinterpret_cast<MessageHandler*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (handler != nullptr) Deliver(*handler, message, wparam, lparam);
  return 0;
}

void RegisterWindowClass() {
  WNDCLASSW window_class{};
  window_class.lpfnWndProc = WindowProcedure;
  window_class.hInstance = MessageWindow::Module();
  window_class.lpszClassName = kClassName;
  if (RegisterClassW(&window_class) != 0 || GetLastError() != ERROR_CLASS_ALREADY_EXISTS) return;
  // A leftover of an earlier load at this address: its procedure may be elsewhere.
  UnregisterClassW(kClassName, MessageWindow::Module());
  RegisterClassW(&window_class);
}

void AcquireWindowClass() {
  AcquireSRWLockExclusive(&class_lock);
  if (class_users++ == 0) RegisterWindowClass();
  ReleaseSRWLockExclusive(&class_lock);
}

void ReleaseWindowClass() {
  AcquireSRWLockExclusive(&class_lock);
  if (--class_users == 0) UnregisterClassW(kClassName, MessageWindow::Module());
  ReleaseSRWLockExclusive(&class_lock);
}

}  // namespace

MessageWindow::MessageWindow(MessageHandler& handler) : handle_(nullptr) {
  AcquireWindowClass();
  handle_ = CreateWindowExW(0, kClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, Module(), nullptr);
  if (handle_ == nullptr) return;
  SetWindowLongPtrW(handle_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&handler));
}

MessageWindow::~MessageWindow() {
  if (handle_ != nullptr) DestroyWindow(handle_);
  ReleaseWindowClass();
}

const wchar_t* MessageWindow::ClassName() {
  return kClassName;
}

HINSTANCE MessageWindow::Module() {
  return reinterpret_cast<HINSTANCE>(&__ImageBase);
}

}  // namespace kesp
