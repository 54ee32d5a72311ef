// The TCP/IP dialog's window: what it shows, what clicking, choosing and pressing keys in it does, and what
// it leaves behind.
#include <optional>

#include "dialog_fixture.h"
#include "message_hook.h"

namespace kesp {
namespace {

using TcpDialogTest = TcpDialogFixture;

const Numbers kAddressAndPort = {ID_LBL_IP_ADDRESS, ID_TXT_IP,   ID_TXT_IP + 1, ID_TXT_IP + 2,
                                 ID_TXT_IP + 3,     ID_LBL_PORT, ID_TXT_PORT,   ID_UD_PORT};

TEST_F(TcpDialogTest, Opened_ShowsTitleTabsAndCaptions) {
  Look([](DialogUser& user) {
    EXPECT_EQ(WindowText(user.window()), kTcpCaption);
    EXPECT_EQ(user.Tabs(), (Lines{L"General", L"Extended"}));
    EXPECT_EQ(user.Tab(), 0);
    EXPECT_EQ(user.Captions(),
              (Lines{L"Use a known address", L"Use auto-discovery to locate instrument", L"IP address", L".",
                     L".", L".", L"Port", L"OK", L"&Cancel", L"&Help"}));
    user.ClickTab(1);
    EXPECT_EQ(user.Tab(), 1);
    EXPECT_EQ(user.Captions(), (Lines{L"Timeout (msec)", L"Create log file", L"OK", L"&Cancel", L"&Help"}));
    user.ClickTab(0);
    EXPECT_TRUE(user.IsVisible(ID_TXT_IP));
    EXPECT_FALSE(user.IsVisible(ID_TXT_TCP_TIMEOUT));
  });
}

TEST_F(TcpDialogTest, WithoutFlag_HasNoExtendedPageAndWritesNothingOfIt) {
  tcp_.SetTimeOutmSecs(50);
  EXPECT_TRUE(Show(
      [](DialogUser& user) {
        EXPECT_EQ(user.Tabs(), Lines{L"General"});
        EXPECT_FALSE(user.Has(ID_TXT_TCP_TIMEOUT));
        EXPECT_FALSE(user.Has(ID_CHK_TCP_LOG_FILE));
        user.Click(ID_OK);
      },
      {.show_extended_page = false}));
  EXPECT_EQ(tcp_.TimeOutmSecs(), 50);
}

TEST_F(TcpDialogTest, Boxes_AreNamedByTheLabelBefore) {
  Look([](DialogUser& user) {
    EXPECT_EQ(user.NameOf(ID_TXT_IP), L"IP address");
    EXPECT_EQ(user.NameOf(ID_TXT_IP + 1), L"IP address, second number");
    EXPECT_EQ(user.NameOf(ID_TXT_IP + 2), L"IP address, third number");
    EXPECT_EQ(user.NameOf(ID_TXT_IP + 3), L"IP address, last number");
    EXPECT_EQ(user.NameOf(ID_TXT_PORT), L"Port");
    EXPECT_EQ(user.NameOf(ID_TXT_TCP_TIMEOUT), L"Timeout (msec)");
  });
}

TEST_F(TcpDialogTest, TabKey_GoesThroughTheVisiblePageAndBack) {
  Look([](DialogUser& user) {
    ExpectTabOrder(user, {ID_TXT_IP, ID_TXT_IP + 1, ID_TXT_IP + 2, ID_TXT_IP + 3, ID_TXT_PORT, ID_OK,
                          ID_CANCEL, ID_HELP, ID_TAB_SETTINGS, ID_OPT_TCP_TYPE});
    user.PressWith({VK_CONTROL}, VK_TAB);
    EXPECT_EQ(TabOrder(user),
              (Numbers{ID_TXT_TCP_TIMEOUT, ID_CHK_TCP_LOG_FILE, ID_OK, ID_CANCEL, ID_HELP, ID_TAB_SETTINGS}));
  });
}

// An option that gets the focus unchecked reports a click. Windows does so, and Wine from version 9 on; where
// it happens anyway, it happens twice here.
void ReportFocusAsClick(const CWPRETSTRUCT& message) {
  if (message.message != WM_SETFOCUS || !HasClass(message.hwnd, L"Button")) return;
  const LONG_PTR kind = GetWindowLongPtrW(message.hwnd, GWL_STYLE) & BS_TYPEMASK;
  if (kind != BS_AUTORADIOBUTTON || Ask(message.hwnd, BM_GETCHECK) != BST_UNCHECKED) return;
  Ask(GetParent(message.hwnd), WM_COMMAND,
      static_cast<WPARAM>(MAKEWPARAM(GetDlgCtrlID(message.hwnd), BN_CLICKED)),
      reinterpret_cast<LPARAM>(message.hwnd));
}

// The options are tried on both kinds of system.
class TcpDialogOptionsTest : public TcpDialogFixture, public testing::WithParamInterface<bool> {
 protected:
  TcpDialogOptionsTest() {
    if (GetParam()) hook_.emplace(&ReportFocusAsClick);
  }

  std::optional<MessageHook> hook_;
};

INSTANTIATE_TEST_SUITE_P(Systems, TcpDialogOptionsTest, testing::Bool(), [](const auto& info) {
  return info.param ? "FocusReportsAClick" : "FocusReportsNothing";
});

TEST_P(TcpDialogOptionsTest, Opened_SelectsTheTransportsTypeAndKeepsIt) {
  const struct {
    int type;
    bool known, discovery;  // which option is selected then
    int focus;
    EIPType written;
  } rows[] = {{0, true, false, ID_TXT_IP, EIPType::ipStatic},
              {1, false, true, ID_OPT_TCP_TYPE + 1, EIPType::ipDynamic},
              {5, false, false, ID_TXT_IP, EIPType::ipDynamic}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.type);
    tcp_.SetIPType(static_cast<EIPType>(row.type));
    EXPECT_TRUE(Show([&row](DialogUser& user) {
      EXPECT_EQ(user.IsChecked(ID_OPT_TCP_TYPE), row.known);
      EXPECT_EQ(user.IsChecked(ID_OPT_TCP_TYPE + 1), row.discovery);
      EXPECT_EQ(user.Focus(), row.focus);
      // The Tab key comes to the selected option, or to the first where none is.
      EXPECT_EQ(user.IsTabStop(ID_OPT_TCP_TYPE), !row.discovery);
      EXPECT_EQ(user.IsTabStop(ID_OPT_TCP_TYPE + 1), row.discovery);
      ExpectEnabled(user, kAddressAndPort, !row.discovery);
      user.Press(VK_RETURN);
    }));
    EXPECT_EQ(tcp_.IPType(), row.written);
  }
}

TEST_P(TcpDialogOptionsTest, ClicksAndArrowKeys_ChooseAndGreyAddressAndPort) {
  EXPECT_TRUE(Show([](DialogUser& user) {
    const auto expect_chosen = [&user](int option) {
      EXPECT_EQ(user.Focus(), ID_OPT_TCP_TYPE + option);
      EXPECT_EQ(user.IsChecked(ID_OPT_TCP_TYPE), option == 0);
      EXPECT_EQ(user.IsChecked(ID_OPT_TCP_TYPE + 1), option == 1);
      ExpectEnabled(user, kAddressAndPort, option == 0);
    };
    user.Click(ID_OPT_TCP_TYPE + 1);
    expect_chosen(1);
    // The other controls are not there for the Tab key now.
    EXPECT_EQ(TabOrder(user), (Numbers{ID_OPT_TCP_TYPE + 1, ID_OK, ID_CANCEL, ID_HELP, ID_TAB_SETTINGS}));
    user.Click(ID_OPT_TCP_TYPE);
    expect_chosen(0);
    user.Press(VK_DOWN);
    expect_chosen(1);
    user.Press(VK_UP);
    expect_chosen(0);
    user.Press(VK_DOWN);
    user.Press(VK_RETURN);
  }));
  EXPECT_EQ(tcp_.IPType(), EIPType::ipDynamic);
}

TEST_F(TcpDialogTest, Arrows_StepTheNumberWithinItsRange) {
  tcp_.SetTimeOutmSecs(150);
  tcp_.SetPort(2);
  EXPECT_TRUE(Show([](DialogUser& user) {
    EXPECT_EQ(user.Range(ID_UD_PORT), (std::pair{1, 65535}));
    EXPECT_EQ(user.Range(ID_UD_TCP_TIMEOUT), (std::pair{100, 10000}));
    user.ClickArrow(ID_UD_PORT, true);
    EXPECT_EQ(user.Text(ID_TXT_PORT), L"3");
    for (int times = 0; times < 3; ++times) user.ClickArrow(ID_UD_PORT, false);
    EXPECT_EQ(user.Text(ID_TXT_PORT), L"1");
    user.ClickTab(1);
    user.ClickArrow(ID_UD_TCP_TIMEOUT, false);
    EXPECT_EQ(user.Text(ID_TXT_TCP_TIMEOUT), L"100");
    user.ClickArrow(ID_UD_TCP_TIMEOUT, true);
    EXPECT_EQ(user.Text(ID_TXT_TCP_TIMEOUT), L"200");
    user.Click(ID_OK);
  }));
  EXPECT_EQ(tcp_.Port(), 1);
  EXPECT_EQ(tcp_.TimeOutmSecs(), 200);
}

// Without a click on the arrows before: under Wine they step back soon after the key then.
TEST_F(TcpDialogTest, UpAndDownKeysInABox_StepItsNumber) {
  EXPECT_TRUE(Show([](DialogUser& user) {
    user.MoveTo(ID_TXT_PORT);
    user.Press(VK_UP);
    user.Press(VK_UP);
    EXPECT_EQ(user.Text(ID_TXT_PORT), L"5027");
    user.Press(VK_DOWN);
    EXPECT_EQ(user.Text(ID_TXT_PORT), L"5026");
    user.Click(ID_OK);
  }));
  EXPECT_EQ(tcp_.Port(), 5026);
}

}  // namespace
}  // namespace kesp
