// What somebody at the screen does, as messages in the queue of the thread that shows the dialog.
#include "dialog_user.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include <array>
#include <utility>

namespace kesp {

namespace {

constexpr UINT kSignal = WM_APP + 1;

// A window of the watched thread that answers to posted messages in their turn: what was posted before is
// done by then. The message's second argument is the event to be set.
LRESULT CALLBACK SignalProcedure(HWND window, UINT message, WPARAM first, LPARAM second) {
  if (message != kSignal) return DefWindowProcW(window, message, first, second);
  SetEvent(reinterpret_cast<HANDLE>(second));
  return 0;
}

HWND MakeSignalWindow() {
  HWND window = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&SignalProcedure));
  return window;
}

POINT MiddleOf(const RECT& area) {
  return {(area.left + area.right) / 2, (area.top + area.bottom) / 2};
}

}  // namespace

DialogUser::DialogUser(std::wstring caption, Act act)
    : caption_(std::move(caption)),
      act_(std::move(act)),
      watched_thread_(GetCurrentThreadId()),
      signal_(MakeSignalWindow()),
      thread_([this] { Run(); }) {}

DialogUser::~DialogUser() {
  thread_.join();
  DestroyWindow(signal_);
  EXPECT_TRUE(came_) << "the dialog did not come";
  EXPECT_TRUE(!came_ || went_) << "the dialog had to be closed by force";
}

void DialogUser::Run() {
  // Out of the way: a list that opens under the mouse goes to the entry that it points at.
  SetCursorPos(0, 0);
  came_ = WaitFor([this] { return (window_ = FindDialog(caption_, watched_thread_)) != nullptr; });
  if (came_) {
    Settle();
    act_(*this);
    went_ = WaitFor([this] { return IsWindow(window_) == FALSE; });
  }
  if (!went_) CloseDialogs(watched_thread_);
}

void DialogUser::Click(int id) {
  HWND control = Control(id);
  RECT area{};
  GetClientRect(control, &area);
  PostClick(control, MiddleOf(area));
  Settle();
}

void DialogUser::ClickArrow(int id, bool up) {
  HWND arrows = Control(id);
  RECT area{};
  GetClientRect(arrows, &area);
  const LONG quarter = area.bottom / 4;
  PostClick(arrows, {area.right / 2, up ? quarter : area.bottom - quarter});
  Settle();
}

void DialogUser::ClickTab(int index) {
  HWND strip = FindWindowExW(window_, nullptr, WC_TABCONTROLW, nullptr);
  RECT area{};
  Ask(strip, TCM_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&area));
  PostClick(strip, MiddleOf(area));
  Settle();
}

void DialogUser::Press(UINT key) {
  PostKey(key);
  Settle();
}

void DialogUser::PressWith(const std::vector<UINT>& modifiers, UINT key) {
  // The thread's key state follows input from the keyboard, not posted messages.
  AttachThreadInput(GetCurrentThreadId(), watched_thread_, TRUE);
  std::array<BYTE, 256> keys{};
  GetKeyboardState(keys.data());
  std::array<BYTE, 256> with_modifiers = keys;
  for (const UINT modifier : modifiers) with_modifiers[modifier] = 0x80;
  SetKeyboardState(with_modifiers.data());
  PostKey(key);
  Settle();
  SetKeyboardState(keys.data());
  AttachThreadInput(GetCurrentThreadId(), watched_thread_, FALSE);
}

void DialogUser::PressAlt(wchar_t letter) {
  constexpr LPARAM kAltIsDown = 1L << 29;
  // The thread makes the character of the key itself.
  Post(KeyboardWindow(), WM_SYSKEYDOWN, static_cast<WPARAM>(VkKeyScanW(letter) & 0xFF), kAltIsDown | 1);
  Settle();
  // The character stands behind what has been settled.
  Settle();
}

void DialogUser::Type(const std::wstring& text) {
  for (const wchar_t character : text) {
    Post(KeyboardWindow(), WM_CHAR, character, 1);
    // A character may move the focus.
    Settle();
  }
}

void DialogUser::Choose(int id, int index) {
  MoveTo(id);
  Press(VK_F4);
  Press(VK_HOME);
  for (int step = 0; step < index; ++step) Press(VK_DOWN);
  Press(VK_RETURN);
}

void DialogUser::MoveTo(int id) {
  Post(window_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Control(id)), TRUE);
  Settle();
}

void DialogUser::CloseByTitleBar() {
  Post(window_, WM_SYSCOMMAND, SC_CLOSE, 0);
  Settle();
}

HWND DialogUser::AwaitInner(const std::wstring& caption) const {
  HWND inner = nullptr;
  // Its title may be that of the dialog, above which it stands.
  const auto came = [&] {
    inner = FindDialog(caption, watched_thread_);
    return inner != nullptr && inner != window_;
  };
  if (WaitFor(came)) return inner;
  ADD_FAILURE() << "what should stand above the dialog did not come";
  return nullptr;
}

void DialogUser::AwaitEndOf(HWND inner) const {
  EXPECT_TRUE(WaitFor([inner] { return IsWindow(inner) == FALSE; }))
      << "what stood above the dialog did not go";
  Settle();
}

BoxContents DialogUser::AnswerBox(const std::wstring& title, int button) {
  HWND box = AwaitInner(title);
  if (box == nullptr) return {};
  BoxContents contents = ReadBox(box);
  Post(GetDlgItem(box, button), BM_CLICK, 0, 0);
  AwaitEndOf(box);
  return contents;
}

void DialogUser::In(const std::wstring& caption, const Act& act) {
  HWND inner = AwaitInner(caption);
  if (inner == nullptr) return;
  HWND outer = std::exchange(window_, inner);
  Settle();
  act(*this);
  window_ = outer;
  AwaitEndOf(inner);
}

void DialogUser::Settle() const {
  HANDLE done = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  PostMessageW(signal_, kSignal, 0, reinterpret_cast<LPARAM>(done));
  const auto is_done = [done] { return WaitForSingleObject(done, 0) == WAIT_OBJECT_0; };
  // A dialog that closed delivers no more messages.
  EXPECT_TRUE(WaitFor([&] { return is_done() || IsWindow(window_) == FALSE; }))
      << "the thread does not answer";
  // Left open when it was not set: the thread may yet set it.
  if (is_done()) CloseHandle(done);
}

void DialogUser::Post(HWND window, UINT message, WPARAM first, LPARAM second) const {
  EXPECT_NE(PostMessageW(window, message, first, second), FALSE)
      << "there is no window for message " << message;
}

void DialogUser::PostClick(HWND window, POINT at) const {
  const LPARAM position = MAKELPARAM(at.x, at.y);
  Post(window, WM_LBUTTONDOWN, MK_LBUTTON, position);
  Post(window, WM_LBUTTONUP, 0, position);
}

HWND DialogUser::KeyboardWindow() const {
  HWND focus = FocusOf(watched_thread_);
  return focus != nullptr ? focus : window_;
}

void DialogUser::PostKey(UINT key) const {
  HWND window = KeyboardWindow();
  Post(window, WM_KEYDOWN, key, 1);
  // What the system adds of its own when the key comes from the keyboard; no header has its name (WM_KEYF1).
  constexpr UINT kHelpKey = 0x004D;
  if (key == VK_F1) Post(window, kHelpKey, 0, 0);
  // The window may be gone by now.
  PostMessageW(window, WM_KEYUP, key, static_cast<LPARAM>(0xC0000001U));
}

}  // namespace kesp
