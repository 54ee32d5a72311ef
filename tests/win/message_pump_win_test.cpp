// Tests of the message pump on a real message queue.
#include "support/message_pump_win.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <vector>

namespace kesp {
namespace {

constexpr UINT kMessage = WM_APP + 1;

// A message-only window that hands its messages of interest to the case.
class Window {
 public:
  using Handler = std::function<void(UINT message, WPARAM wparam)>;

  explicit Window(Handler handler) : handler_(std::move(handler)) {
    WNDCLASSW window_class{};
    window_class.lpfnWndProc = &Procedure;
    window_class.hInstance = GetModuleHandleW(nullptr);
    window_class.lpszClassName = L"MessagePumpWinTest";
    RegisterClassW(&window_class);  // fails harmlessly from the second time on
    window_ =
        CreateWindowW(L"MessagePumpWinTest", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  }
  ~Window() { DestroyWindow(window_); }
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  HWND handle() const { return window_; }
  void Post(WPARAM wparam) const { PostMessageW(window_, kMessage, wparam, 0); }

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    auto* self = reinterpret_cast<Window*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self != nullptr && (message == kMessage || message == WM_CHAR || message == WM_TIMER)) {
      self->handler_(message, wparam);
      return 0;
    }
    return DefWindowProcW(window, message, wparam, lparam);
  }

  Handler handler_;
  HWND window_ = nullptr;
};

TEST(MessagePumpWinTest, HandlerPostsToItselfForEver_Returns) {
  constexpr DWORD kGiveUpAfter = 5000;
  const DWORD start = GetTickCount();
  const Window* self = nullptr;
  int handled = 0;
  bool gave_up = false;
  const Window window([&](UINT, WPARAM) {
    ++handled;
    gave_up = GetTickCount() - start > kGiveUpAfter;
    if (!gave_up) self->Post(0);
  });
  self = &window;
  window.Post(0);
  MessagePumpWin().PumpOnce();
  EXPECT_FALSE(gave_up);
  EXPECT_GE(handled, 1);
}

TEST(MessagePumpWinTest, MessagesWait_AllAreHandledInOrderAlsoWhenAHandlerPumps) {
  std::vector<WPARAM> handled;
  const Window window([&](UINT, WPARAM wparam) {
    handled.push_back(wparam);
    if (wparam == 1) MessagePumpWin().PumpOnce();
  });
  for (WPARAM i = 1; i <= 5; ++i) window.Post(i);
  MessagePumpWin().PumpOnce();
  EXPECT_EQ(handled, (std::vector<WPARAM>{1, 2, 3, 4, 5}));
}

TEST(MessagePumpWinTest, TimerIsDue_IsDelivered) {
  int ticks = 0;
  const Window window([&](UINT message, WPARAM) { ticks += message == WM_TIMER ? 1 : 0; });
  SetTimer(window.handle(), 1, 10, nullptr);
  const DWORD start = GetTickCount();
  while (ticks == 0 && GetTickCount() - start < 5000) MessagePumpWin().PumpOnce();
  KillTimer(window.handle(), 1);
  EXPECT_GE(ticks, 1);
}

TEST(MessagePumpWinTest, CharacterOutsideTheCodePage_ArrivesWhole) {
  std::vector<WPARAM> characters;
  const Window window([&](UINT, WPARAM wparam) { characters.push_back(wparam); });
  PostMessageW(window.handle(), WM_CHAR, 0x0416, 0);
  MessagePumpWin().PumpOnce();
  EXPECT_EQ(characters, std::vector<WPARAM>{0x0416});
}

TEST(MessagePumpWinTest, KeyIsPressed_ArrivesAsItsCharacter) {
  std::vector<WPARAM> characters;
  const Window window([&](UINT, WPARAM wparam) { characters.push_back(wparam); });
  PostMessageW(window.handle(), WM_KEYDOWN, VK_RETURN, 0x001C0001);
  MessagePumpWin().PumpOnce();
  EXPECT_EQ(characters, std::vector<WPARAM>{L'\r'});
}

TEST(MessagePumpWinTest, QuitWaits_IsPutBackAfterTheOtherMessages) {
  std::vector<WPARAM> handled;
  const Window window([&](UINT, WPARAM wparam) { handled.push_back(wparam); });
  window.Post(7);
  PostQuitMessage(42);
  MessagePumpWin pump;
  pump.PumpOnce();
  pump.PumpOnce();
  EXPECT_EQ(handled, std::vector<WPARAM>{7});
  MSG message{};
  ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
  EXPECT_EQ(message.wParam, 42U);
}

}  // namespace
}  // namespace kesp
