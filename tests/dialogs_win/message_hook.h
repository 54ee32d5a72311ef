// Sees what the windows of a thread are sent.
#pragma once

#include <windows.h>

#include <functional>
#include <utility>

namespace kesp {

// While it lives, `seen` is told of each message to a window of the thread that made it, on that thread, when
// the window has handled it. One at a time for each thread.
class MessageHook {
 public:
  using Seen = std::function<void(const CWPRETSTRUCT& message)>;

  explicit MessageHook(Seen seen)
      : hook_(SetWindowsHookExW(WH_CALLWNDPROCRET, &MessageHook::Procedure, nullptr, GetCurrentThreadId())) {
    Current() = std::move(seen);
  }
  ~MessageHook() {
    UnhookWindowsHookEx(hook_);
    Current() = nullptr;
  }
  MessageHook(const MessageHook&) = delete;
  MessageHook& operator=(const MessageHook&) = delete;

 private:
  static Seen& Current() {
    static thread_local Seen current;
    return current;
  }

  static LRESULT CALLBACK Procedure(int code, WPARAM first, LPARAM second) {
    if (code >= 0 && Current()) Current()(*reinterpret_cast<const CWPRETSTRUCT*>(second));
    return CallNextHookEx(nullptr, code, first, second);
  }

  HHOOK hook_;
};

}  // namespace kesp
