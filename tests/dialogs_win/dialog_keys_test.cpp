// The keys that work in every dialog: those of the buttons and of the pages, and those that ask for help.
#include "dialog_fixture.h"
#include "dialogs/form_window_win.h"
#include "dialogs/frm_tcp_settings.h"
#include "support/owner_window_win.h"
#include "support/user_surface_win.h"

namespace kesp {
namespace {

constexpr std::int32_t kTopic = 4711;

// What the help viewer was asked for.
std::vector<std::uint32_t> help_topics;

bool RecordHelp(void* owner, const std::wstring& help_file, std::uint32_t command, std::uint32_t data) {
  EXPECT_EQ(owner, nullptr);
  EXPECT_EQ(help_file, L"C:\\help.hlp");
  EXPECT_EQ(command, std::uint32_t{HELP_CONTEXT});
  help_topics.push_back(data);
  return true;
}

using DialogKeysTest = ComDialogFixture;

class DialogHelpTest : public TcpDialogFixture {
 protected:
  DialogHelpTest() {
    help_topics.clear();
    surface_.SetHelpFile(L"C:\\help.hlp");
  }

  // The TCP/IP dialog with a help viewer of the test's own.
  bool ShowWithHelp(const DialogUser::Act& act) {
    DialogUser user(kTcpCaption, act);
    frmTCPSettings form(surface_, tcp_, {.show_extended_page = true, .help_context = kTopic});
    FormWindow(form, {DIALOG_TCP_SETTINGS, {DIALOG_TCP_GENERAL_PAGE, DIALOG_TCP_EXTENDED_PAGE}, {}},
               OwnerWindow())
        .ShowModal();
    return !form.bCancel();
  }

  UserSurfaceWin surface_{&RecordHelp};
};

TEST_F(DialogHelpTest, HelpButtonItsLetterAndF1_OpenTheTopic) {
  EXPECT_TRUE(ShowWithHelp([](DialogUser& user) {
    user.Click(ID_HELP);
    EXPECT_EQ(help_topics, (std::vector<std::uint32_t>{kTopic}));
    user.PressAlt(L'h');
    EXPECT_EQ(help_topics.size(), 2u);
    user.MoveTo(ID_TXT_PORT);
    user.Press(VK_F1);
    EXPECT_EQ(help_topics, (std::vector<std::uint32_t>{kTopic, kTopic, kTopic}));
    user.Type(L"5026");
    user.Press(VK_RETURN);
  }));
  EXPECT_EQ(help_topics.size(), 3u);
  EXPECT_EQ(tcp_.Port(), 5026);
}

TEST_F(DialogKeysTest, EnterOnAnotherButton_IsThatButton) {
  EXPECT_FALSE(Show([](DialogUser& user) {
    user.MoveTo(ID_CANCEL);
    user.Press(VK_RETURN);
  }));
  Look([](DialogUser& user) {
    user.Click(ID_CHK_USE_RF_MODEM);
    // On a page, and not the dialog's own.
    user.MoveTo(ID_CMD_RF_PROPERTIES);
    user.Press(VK_RETURN);
    user.AnswerBox(L"Connect RF Modem", IDCANCEL);
  });
}

TEST_F(DialogKeysTest, SpaceOnACheckBox_Checks) {
  EXPECT_TRUE(Show([](DialogUser& user) {
    user.MoveTo(ID_CHK_USE_REDIRECTOR);
    user.Press(VK_SPACE);
    EXPECT_TRUE(user.IsChecked(ID_CHK_USE_REDIRECTOR));
    user.Press(VK_RETURN);
  }));
  EXPECT_TRUE(port_.UseRedirector());
}

TEST_F(DialogKeysTest, EscapeTitleBarAndAltC_AreCancel) {
  const DialogUser::Act ways[] = {
      [](DialogUser& user) { user.Press(VK_ESCAPE); }, [](DialogUser& user) { user.CloseByTitleBar(); },
      [](DialogUser& user) { user.PressAlt(L'c'); }, [](DialogUser& user) { user.Click(ID_CANCEL); }};
  for (const DialogUser::Act& way : ways) {
    EXPECT_FALSE(Show([&way](DialogUser& user) {
      user.Click(ID_CHK_USE_REDIRECTOR);
      way(user);
    }));
    EXPECT_FALSE(port_.UseRedirector());
  }
}

TEST_F(DialogKeysTest, AltT_TestsTheSwitchOnItsPageOnly) {
  port_.SetUseSmartSwitch(true);
  Look([this](DialogUser& user) {
    user.PressAlt(L't');
    EXPECT_TRUE(ports_.line.writes.empty());
    user.ClickTab(1);
    EXPECT_TRUE(user.IsEnabled(ID_CMD_TEST_SMART_SWITCH));
    user.PressAlt(L't');
    EXPECT_FALSE(ports_.line.writes.empty());
  });
}

TEST_F(DialogKeysTest, PageKeys_GoRoundThePages) {
  Look([](DialogUser& user) {
    const auto expect_page = [&user](int tab, int focus) {
      EXPECT_EQ(user.Tab(), tab);
      EXPECT_EQ(user.Focus(), focus);
      EXPECT_TRUE(user.IsVisible(focus));
    };
    user.PressWith({VK_CONTROL}, VK_TAB);
    expect_page(1, ID_CHK_USE_SMART_SWITCH);
    user.PressWith({VK_CONTROL}, VK_NEXT);
    expect_page(2, ID_CBO_PARITY);
    user.PressWith({VK_CONTROL}, VK_TAB);
    expect_page(0, ID_ICBO_COM_PORT);
    user.PressWith({VK_CONTROL, VK_SHIFT}, VK_TAB);
    expect_page(2, ID_CBO_PARITY);
    user.PressWith({VK_CONTROL}, VK_PRIOR);
    expect_page(1, ID_CHK_USE_SMART_SWITCH);
    user.PressWith({VK_CONTROL}, VK_PRIOR);
    expect_page(0, ID_ICBO_COM_PORT);
    EXPECT_FALSE(user.IsVisible(ID_CHK_USE_SMART_SWITCH));
    // From a button beside the pages, too.
    user.MoveTo(ID_CANCEL);
    user.PressWith({VK_CONTROL}, VK_TAB);
    expect_page(1, ID_CHK_USE_SMART_SWITCH);
  });
}

TEST_F(DialogKeysTest, PageKeyInABox_LeavesItFirst) {
  Look([](DialogUser& user) {
    user.ClickTab(2);
    user.MoveTo(ID_TXT_TIMEOUT);
    user.Type(L"5");
    user.PressWith({VK_CONTROL}, VK_TAB);
    EXPECT_EQ(user.Text(ID_TXT_TIMEOUT), L"100");
  });
}

TEST_F(DialogKeysTest, ArrowsOnTheTabs_GoThroughThePages) {
  Look([](DialogUser& user) {
    user.MoveTo(ID_TAB_SETTINGS);
    user.Press(VK_RIGHT);
    EXPECT_EQ(user.Tab(), 1);
    EXPECT_TRUE(user.IsVisible(ID_CHK_USE_SMART_SWITCH));
    EXPECT_EQ(user.Focus(), ID_TAB_SETTINGS);
    user.Press(VK_LEFT);
    EXPECT_EQ(user.Tab(), 0);
    EXPECT_TRUE(user.IsVisible(ID_ICBO_COM_PORT));
  });
}

// As programs press a button that help people who cannot.
TEST_F(DialogKeysTest, CommandSentFromOutside_EndsTheDialogAtOnce) {
  EXPECT_TRUE(Show([](DialogUser& user) { Ask(user.window(), WM_COMMAND, ID_OK); }));
  EXPECT_FALSE(Show([](DialogUser& user) { Ask(user.window(), WM_CLOSE); }));
}

}  // namespace
}  // namespace kesp
