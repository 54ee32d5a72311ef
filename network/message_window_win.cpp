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

// Held while a window's handler is looked up and kept alive, exclusively while it is taken away.
SRWLOCK handlers_lock = SRWLOCK_INIT;

class SharedLock {
 public:
  explicit SharedLock(SRWLOCK& lock) : lock_(lock) { AcquireSRWLockShared(&lock_); }
  ~SharedLock() { ReleaseSRWLockShared(&lock_); }
  SharedLock(const SharedLock&) = delete;
  SharedLock& operator=(const SharedLock&) = delete;

 private:
  SRWLOCK& lock_;
};

// What a window whose object is gone is told to end by: only its own thread can destroy it. The system leaves
// the messages from here to the notifications to the window class.
constexpr UINT kDestroyYourself = WM_USER;

void ReleaseWindowClass();

// A handler, and what keeps it alive.
struct HeldHandler {
  MessageHandler* handler = nullptr;
  std::shared_ptr<void> alive;
};

// Holds the handler of that window; there is none when the object is gone. The lock is for an object that
// another thread ends at this moment.
HeldHandler HoldHandler(HWND window) {
  const SharedLock lock(handlers_lock);
  auto* const handler = reinterpret_cast<MessageHandler*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (handler == nullptr) return {};
  return {handler, handler->KeepAlive()};
}

// The handler, and so the window too, may be gone when this returns.
void Deliver(HWND window, UINT message, WPARAM wparam, LPARAM lparam) noexcept {
  try {
    const HeldHandler held = HoldHandler(window);
    if (held.handler != nullptr) held.handler->OnMessage(message, wparam, lparam);
  } catch (...) {
    // Nothing may be thrown through the system's dispatcher.
  }
}

void EndForsaken(HWND window) {
  if (GetWindowLongPtrW(window, GWLP_USERDATA) != 0) return;
  DestroyWindow(window);
  ReleaseWindowClass();
}

LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message == kDestroyYourself) {
    EndForsaken(window);
  } else if (NotificationCode::IsOne(message)) {
    Deliver(window, message, wparam, lparam);
  } else {
    return DefWindowProcW(window, message, wparam, lparam);
  }
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

MessageWindow::MessageWindow(MessageHandler& handler) : thread_(GetCurrentThreadId()), handle_(nullptr) {
  AcquireWindowClass();
  handle_ = CreateWindowExW(0, kClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, Module(), nullptr);
  if (handle_ == nullptr) return;
  const auto value = reinterpret_cast<LONG_PTR>(&handler);
  SetWindowLongPtrW(handle_, GWLP_USERDATA, value);
  if (GetWindowLongPtrW(handle_, GWLP_USERDATA) == value) return;
  // Nobody would ever hear of its messages.
  DestroyWindow(handle_);
  handle_ = nullptr;
}

MessageWindow::~MessageWindow() {
  if (handle_ == nullptr) {
    ReleaseWindowClass();
    return;
  }
  AcquireSRWLockExclusive(&handlers_lock);
  SetWindowLongPtrW(handle_, GWLP_USERDATA, 0);
  ReleaseSRWLockExclusive(&handlers_lock);
  if (DestroyWindow(handle_) != FALSE) {
    ReleaseWindowClass();
  } else if (PostMessageW(handle_, kDestroyYourself, 0, 0) == FALSE && IsWindow(handle_) == FALSE) {
    // Its thread has ended, and the window with it.
    ReleaseWindowClass();
  }
}

const wchar_t* MessageWindow::ClassName() {
  return kClassName;
}

HINSTANCE MessageWindow::Module() {
  return reinterpret_cast<HINSTANCE>(&__ImageBase);
}

}  // namespace kesp
