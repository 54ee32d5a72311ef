// Tests of the message boxes as they stand on the screen, foremost the error box.
#include "support/error_box.h"

#include <gtest/gtest.h>

#include <thread>

#include "box_reader.h"
#include "client_window.h"
#include "html_help_fake.h"
#include "support/lines_fixture.h"
#include "support/user_surface_win.h"

namespace kesp {
namespace {

const Failure kFailure(-2147221257, L"[CKespTCP - Initialize()]", L"Connection timed out");

// What the Help button was bound to, for each time that it was pressed.
struct HelpRecord {
  void* owner;
  std::wstring file;
  std::int32_t context;
  bool operator==(const HelpRecord&) const = default;
};
std::vector<HelpRecord> help_records;

bool RecordHelp(void* owner, const std::wstring& help_file, std::uint32_t command, std::uint32_t data) {
  EXPECT_EQ(command, std::uint32_t{HELP_CONTEXT});
  help_records.push_back({owner, help_file, static_cast<std::int32_t>(data)});
  return true;
}

class ErrorBoxTest : public testing::Test {
 protected:
  void SetUp() override {
    // A hidden one will do: showing one takes seconds on an X display without a window manager.
    HWND probe = CreateWindowW(L"STATIC", L"", WS_OVERLAPPED, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    if (probe == nullptr) GTEST_SKIP() << "there is no display to show windows on";
    DestroyWindow(probe);
    help_records.clear();
  }

  // Shows the failure, with a Help button where there is a help file, and what was read of the box.
  static BoxContents Show(UserSurface& user, const BoxReader::Act& act = Press(IDOK),
                          const std::wstring& help_file = L"", std::int32_t help_context = 0) {
    BoxReader reader(kErrorBoxTitle, act);
    ShowError(user, L"attempting to perform query", kFailure, kErrorBoxTitle, help_file, help_context);
    return reader.Contents();
  }

  // Sends what Windows makes of the F1 key and of the Help button (which has no effect of its own under
  // Wine).
  static void AskForHelpThenPressOk(HWND box) {
    HELPINFO info{};
    info.cbSize = sizeof(info);
    info.iContextType = HELPINFO_WINDOW;
    info.hItemHandle = box;
    Ask(box, WM_HELP, 0, reinterpret_cast<LPARAM>(&info));
    Press(IDOK)(box);
  }

  UserSurfaceWin user{RecordHelp};
};

TEST_F(ErrorBoxTest, Shown_HasTextStopIconAndButtons) {
  for (const auto& [help_file, buttons] :
       {std::pair{L"", Lines{L"OK"}}, std::pair{L"kesp.hlp", Lines{L"OK", L"Help"}}}) {
    const BoxContents box = Show(user, Press(IDOK), help_file);
    EXPECT_EQ(box.texts, Lines{ErrorBoxText(L"attempting to perform query", kFailure)});
    EXPECT_EQ(box.buttons, buttons);
    EXPECT_EQ(box.icon, LoadIconW(nullptr, IDI_HAND));
  }
  EXPECT_EQ(help_records.size(), 0U);
}

TEST_F(ErrorBoxTest, HelpIsAskedFor_OpensTheFileAtTheContextAndStays) {
  const ClientWindow owner;
  Show(user, &AskForHelpThenPressOk, L"kesp.hlp", 4711);
  EXPECT_EQ(help_records, (std::vector<HelpRecord>{{owner.handle(), L"kesp.hlp", 4711}}));
}

TEST_F(ErrorBoxTest, HelpOfACompiledHtmlFile_IsHtmlHelpInFrontOfTheBoxesOwner) {
  const HtmlHelpFake html_help;
  const ClientWindow owner;
  UserSurfaceWin with_viewers;
  Show(with_viewers, &AskForHelpThenPressOk, L"C:\\lab\\Lab.CHM", -2);
  EXPECT_EQ(html_help.calls(),
            (std::vector<HtmlHelpFake::Call>{{owner.handle(), L"C:\\lab\\Lab.CHM", 0x000F, 0xFFFFFFFE}}));
}

TEST_F(ErrorBoxTest, HelpIsAskedForWithoutAHelpFile_OpensNothing) {
  Show(user, &AskForHelpThenPressOk);
  EXPECT_EQ(help_records.size(), 0U);
}

TEST_F(ErrorBoxTest, ThreadHasAnActiveWindow_BelongsToItAndDisablesIt) {
  const ClientWindow owner;
  const BoxContents box = Show(user);
  EXPECT_EQ(box.owner, owner.handle());
  EXPECT_FALSE(box.owner_enabled);
  EXPECT_TRUE(owner.is_enabled());
}

TEST_F(ErrorBoxTest, ThreadHasNoActiveWindow_DisablesItsWindowsAllTheSame) {
  const ClientWindow window;
  SetActiveWindow(GetDesktopWindow());
  ShowWindow(window.handle(), SW_HIDE);
  if (GetActiveWindow() != nullptr) GTEST_SKIP() << "the system keeps a window active";
  bool enabled = true;
  Show(user, [&](HWND box) {
    enabled = window.is_enabled();
    Press(IDOK)(box);
  });
  EXPECT_FALSE(enabled);
  EXPECT_TRUE(window.is_enabled());
}

// A thread that has shown its windows without activating one has none active.
TEST_F(ErrorBoxTest, ThreadHasWindowsButNoActiveOne_BelongsToTheForemostAndTheOthersWait) {
  std::thread([this] {
    HWND windows[2] = {};
    for (HWND& window : windows) {
      window = CreateWindowW(L"STATIC", L"client", WS_OVERLAPPEDWINDOW, 0, 0, 50, 50, nullptr, nullptr,
                             nullptr, nullptr);
      ShowWindow(window, SW_SHOWNOACTIVATE);
    }
    EXPECT_EQ(GetActiveWindow(), nullptr);
    bool enabled[2] = {true, true};
    const BoxContents box = Show(user, [&](HWND shown) {
      for (const int i : {0, 1}) enabled[i] = IsWindowEnabled(windows[i]) != FALSE;
      Press(IDOK)(shown);
    });
    EXPECT_TRUE(box.owner == windows[0] || box.owner == windows[1]);
    for (const int i : {0, 1}) {
      EXPECT_FALSE(enabled[i]) << i;
      EXPECT_TRUE(IsWindowEnabled(windows[i])) << i;
      DestroyWindow(windows[i]);
    }
  }).join();
}

TEST_F(ErrorBoxTest, UserAnswers_ReturnsTheButtonsNumber) {
  for (const int button : {IDYES, IDNO}) {
    BoxReader reader(L"Question", Press(button));
    EXPECT_EQ(user.ShowMessageBox({L"Sure?", L"Question", MB_YESNO, L"", 0}), button);
    EXPECT_EQ(reader.Contents().buttons, (Lines{L"Yes", L"No"}));
  }
}

TEST_F(ErrorBoxTest, UserClosesTheBox_Returns) {
  EXPECT_EQ(Show(user, [](HWND box) { PostMessageW(box, WM_CLOSE, 0, 0); }).texts.size(), 1U);
}

}  // namespace
}  // namespace kesp
