// A hidden message-only window that hands its application messages to an object.
#pragma once

#include <windows.h>

#include <memory>

namespace kesp {

// Receives the messages of one window, on the thread that made it.
class MessageHandler {
 public:
  virtual ~MessageHandler() = default;

  // message is in the range of application messages, 0x8000 to 0xBFFF. Whatever it throws is swallowed.
  virtual void OnMessage(UINT message, WPARAM wparam, LPARAM lparam) = 0;

  // Something that keeps the handler, and with it the window, alive while it is held. The window procedure
  // holds it for the length of one message and touches nothing after it has let go of it. Throws when the
  // handler is being destroyed, by another thread; the message is lost then.
  virtual std::shared_ptr<void> KeepAlive() = 0;
};

// The window goes with the object; the window class, which all of them share, goes with the last window, so
// that a library that was unloaded leaves nothing behind. May be destroyed inside its own handler.
//
// Also on another thread than the one that made it: its handler gets nothing any more from then on, and the
// window goes when its own thread handles its messages the next time, or ends. Until then the module must
// stay loaded.
class MessageWindow {
 public:
  // handle() is null afterwards when the system could not make the window.
  explicit MessageWindow(MessageHandler& handler);
  ~MessageWindow();
  MessageWindow(const MessageWindow&) = delete;
  MessageWindow& operator=(const MessageWindow&) = delete;

  HWND handle() const { return handle_; }

  // Whether the window's messages come to the calling thread, which is the one that made it.
  bool IsOfThisThread() const { return thread_ == GetCurrentThreadId(); }

  // The name of the window class, for tests that look whether it is gone.
  static const wchar_t* ClassName();
  // The module that the class belongs to.
  static HINSTANCE Module();

 private:
  DWORD thread_;
  HWND handle_;
};

}  // namespace kesp
