// Tests of the message boxes as they stand on the screen, foremost the error box.
#include "support/error_box.h"

#include <gtest/gtest.h>

#include "box_reader.h"
#include "html_help_fake.h"
#include "support/user_surface_win.h"

namespace kesp {
namespace {

const Failure kFailure(-2147221257, L"[CKespTCP - Initialize()]", L"Connection timed out");
constexpr wchar_t kText[] =
    L"An error occurred while attempting to perform query.\r\n"
    L"Error: -2147221257 - Connection timed out\r\n"
    L"([CKespTCP - Initialize()])";

// What the Help button was bound to, and how often it was pressed.
struct HelpRecord {
  int count = 0;
  void* owner = nullptr;
  std::wstring file;
  std::int32_t context = 0;
};
HelpRecord help_record;

bool RecordHelp(void* owner, const std::wstring& help_file, std::uint32_t command, std::uint32_t data) {
  EXPECT_EQ(command, std::uint32_t{HELP_CONTEXT});
  help_record = {help_record.count + 1, owner, help_file, static_cast<std::int32_t>(data)};
  return true;
}

// A visible window, which is the thread's active one.
class Window {
 public:
  Window()
      : window_(CreateWindowW(L"STATIC", L"owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 40, 40, 200, 100,
                              nullptr, nullptr, nullptr, nullptr)) {
    SetActiveWindow(window_);
  }
  ~Window() { DestroyWindow(window_); }
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  HWND handle() const { return window_; }

 private:
  HWND window_;
};

class ErrorBoxTest : public testing::Test {
 protected:
  void SetUp() override {
    // A hidden one will do: showing one takes seconds on an X display without a window manager.
    HWND probe = CreateWindowW(L"STATIC", L"", WS_OVERLAPPED, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    if (probe == nullptr) GTEST_SKIP() << "there is no display to show windows on";
    DestroyWindow(probe);
    help_record = {};
  }

  UserSurfaceWin user{RecordHelp};
};

TEST_F(ErrorBoxTest, NoHelpFile_ShowsTextStopIconAndOk) {
  BoxReader reader(kErrorBoxTitle, Press(IDOK));
  ShowError(user, L"attempting to perform query", kFailure);
  const BoxContents& box = reader.Contents();
  EXPECT_EQ(box.texts, std::vector<std::wstring>{kText});
  EXPECT_EQ(box.buttons, std::vector<std::wstring>{L"OK"});
  EXPECT_EQ(box.icon, LoadIconW(nullptr, IDI_HAND));
}

TEST_F(ErrorBoxTest, HelpFile_AddsAHelpButton) {
  BoxReader reader(L"Another title", Press(IDOK));
  ShowError(user, L"attempting to perform query", kFailure, L"Another title", L"kesp.hlp", 4711);
  const BoxContents& box = reader.Contents();
  EXPECT_EQ(box.texts, std::vector<std::wstring>{kText});
  EXPECT_EQ(box.buttons, (std::vector<std::wstring>{L"OK", L"Help"}));
  EXPECT_EQ(help_record.count, 0);
}

// Sends what Windows makes of the F1 key and of the Help button (which has no effect of its own under Wine).
BoxReader::Act AskForHelpThenPressOk() {
  return [](HWND box) {
    HELPINFO info{};
    info.cbSize = sizeof(info);
    info.iContextType = HELPINFO_WINDOW;
    info.hItemHandle = box;
    DWORD_PTR result = 0;
    SendMessageTimeoutW(box, WM_HELP, 0, reinterpret_cast<LPARAM>(&info), SMTO_ABORTIFHUNG, 2000, &result);
    Press(IDOK)(box);
  };
}

TEST_F(ErrorBoxTest, HelpIsAskedFor_OpensTheFileAtTheContextAndStays) {
  const Window owner;
  BoxReader reader(kErrorBoxTitle, AskForHelpThenPressOk());
  ShowError(user, L"attempting to perform query", kFailure, kErrorBoxTitle, L"kesp.hlp", 4711);
  reader.Contents();
  EXPECT_EQ(help_record.count, 1);
  EXPECT_EQ(help_record.owner, owner.handle());
  EXPECT_EQ(help_record.file, L"kesp.hlp");
  EXPECT_EQ(help_record.context, 4711);
}

TEST_F(ErrorBoxTest, HelpOfACompiledHtmlFile_IsHtmlHelpInFrontOfTheBoxesOwner) {
  const HtmlHelpFake html_help;
  const Window owner;
  UserSurfaceWin with_viewers;
  BoxReader reader(kErrorBoxTitle, AskForHelpThenPressOk());
  ShowError(with_viewers, L"attempting to perform query", kFailure, kErrorBoxTitle, L"C:\\lab\\Lab.CHM", -2);
  reader.Contents();
  EXPECT_EQ(html_help.calls(),
            (std::vector<HtmlHelpFake::Call>{{owner.handle(), L"C:\\lab\\Lab.CHM", 0x000F, 0xFFFFFFFE}}));
}

TEST_F(ErrorBoxTest, HelpIsAskedForWithoutAHelpFile_OpensNothing) {
  BoxReader reader(kErrorBoxTitle, AskForHelpThenPressOk());
  ShowError(user, L"attempting to perform query", kFailure);
  reader.Contents();
  EXPECT_EQ(help_record.count, 0);
}

TEST_F(ErrorBoxTest, ThreadHasAnActiveWindow_BelongsToItAndDisablesIt) {
  const Window owner;
  BoxReader reader(kErrorBoxTitle, Press(IDOK));
  ShowError(user, L"attempting to perform query", kFailure);
  const BoxContents& box = reader.Contents();
  EXPECT_EQ(box.owner, owner.handle());
  EXPECT_FALSE(box.owner_enabled);
  EXPECT_TRUE(IsWindowEnabled(owner.handle()));
}

TEST_F(ErrorBoxTest, ThreadHasNoActiveWindow_DisablesItsWindowsAllTheSame) {
  const Window window;
  SetActiveWindow(GetDesktopWindow());
  ShowWindow(window.handle(), SW_HIDE);
  if (GetActiveWindow() != nullptr) GTEST_SKIP() << "the system keeps a window active";
  bool enabled = true;
  BoxReader reader(kErrorBoxTitle, [&](HWND box) {
    enabled = IsWindowEnabled(window.handle()) != FALSE;
    Press(IDOK)(box);
  });
  ShowError(user, L"attempting to perform query", kFailure);
  reader.Contents();
  EXPECT_FALSE(enabled);
  EXPECT_TRUE(IsWindowEnabled(window.handle()));
}

TEST_F(ErrorBoxTest, UserAnswers_ReturnsTheButtonsNumber) {
  for (const int button : {IDYES, IDNO}) {
    BoxReader reader(L"Question", Press(button));
    EXPECT_EQ(user.ShowMessageBox({L"Sure?", L"Question", MB_YESNO, L"", 0}), button);
    EXPECT_EQ(reader.Contents().buttons, (std::vector<std::wstring>{L"Yes", L"No"}));
  }
}

TEST_F(ErrorBoxTest, UserClosesTheBox_Returns) {
  BoxReader reader(kErrorBoxTitle, [](HWND box) { PostMessageW(box, WM_CLOSE, 0, 0); });
  ShowError(user, L"attempting to perform query", kFailure);
  EXPECT_EQ(reader.Contents().texts.size(), 1U);
}

}  // namespace
}  // namespace kesp
