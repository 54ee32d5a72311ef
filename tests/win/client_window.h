// A client's window: visible, with a timer, and with a record of what reaches it.
#pragma once

#include <windows.h>

#include <atomic>
#include <functional>
#include <utility>

namespace kesp {

// Made and destroyed by the thread that shows the dialogs. The counts may be read by others.
class ClientWindow {
 public:
  // At that place on the screen, in pixels, and active then.
  explicit ClientWindow(RECT place = {100, 80, 700, 480}) {
    window_ = CreateWindowExW(0, L"STATIC", L"client", WS_OVERLAPPEDWINDOW | WS_VISIBLE, place.left,
                              place.top, place.right - place.left, place.bottom - place.top, nullptr, nullptr,
                              nullptr, nullptr);
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    original_ = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&ClientWindow::Procedure)));
    SetActiveWindow(window_);
  }
  ~ClientWindow() {
    if (IsWindow(window_) != FALSE) DestroyWindow(window_);
  }
  ClientWindow(const ClientWindow&) = delete;
  ClientWindow& operator=(const ClientWindow&) = delete;

  HWND handle() const { return window_; }
  bool is_enabled() const { return IsWindowEnabled(window_) != FALSE; }

  // A timer that ticks every few milliseconds from now on; each tick runs on_tick.
  void StartTimer() const {
    constexpr UINT kPeriodMs = 10;
    SetTimer(window_, 1, kPeriodMs, nullptr);
  }
  std::function<void()> on_tick = [] {};
  // Runs when the window is sent kAct.
  static constexpr UINT kAct = WM_APP + 2;
  std::function<void()> on_act = [] {};

  std::atomic<int> ticks = 0;
  std::atomic<int> paints = 0;

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
    auto& self = *reinterpret_cast<ClientWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == WM_PAINT) ++self.paints;
    if (message == WM_TIMER) {
      ++self.ticks;
      self.on_tick();
      return 0;
    }
    if (message == kAct) {
      self.on_act();
      return 0;
    }
    return CallWindowProcW(self.original_, window, message, first, second);
  }

  HWND window_;
  WNDPROC original_;
};

}  // namespace kesp
