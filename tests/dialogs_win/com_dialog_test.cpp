// The RS-232 dialog's window: what stands on its pages, choosing in its lists, going through its controls by
// keys, and where it takes the user that OK refuses.
#include <array>

#include "dialog_fixture.h"
#include "message_hook.h"

namespace kesp {
namespace {

using ComDialogTest = ComDialogFixture;

constexpr int kSmartSwitchTab = 1;
constexpr int kExtendedTab = 2;

TEST_F(ComDialogTest, Opened_ShowsTitleTabsAndCaptions) {
  Look([](DialogUser& user) {
    EXPECT_EQ(WindowText(user.window()), kComCaption);
    EXPECT_EQ(user.Tabs(), (Lines{L"COM Port", L"SmartSwitch", L"Extended"}));
    EXPECT_EQ(user.Tab(), 0);
    EXPECT_EQ(user.Captions(), (Lines{L"COM port", L"Baud rate", L"Use IR dongle", L"Use RF modem (wireless)",
                                      L"Properties...", L"Instrument address", L"Use redirector", L"OK",
                                      L"&Cancel", L"&Help"}));
    user.ClickTab(kSmartSwitchTab);
    EXPECT_EQ(user.Captions(), (Lines{L"Enable SmartSwitch", L"SmartSwitch style", L"&Test SmartSwitch",
                                      L"OK", L"&Cancel", L"&Help"}));
    user.ClickTab(kExtendedTab);
    EXPECT_EQ(user.Captions(),
              (Lines{L"Parity", L"Data bits", L"Stop bits", L"Minimum baud rate", L"Maximum baud rate",
                     L"Timeout (msec)", L"Controller style", L"Strip CR/LF", L"Check non-ASCII",
                     L"Create log file", L"OK", L"&Cancel", L"&Help"}));
    user.ClickTab(0);
    EXPECT_TRUE(user.IsVisible(ID_ICBO_COM_PORT));
    EXPECT_FALSE(user.IsVisible(ID_CBO_PARITY));
  });
}

TEST_F(ComDialogTest, WithoutFlags_ShowsTheFirstPageOnlyAndNoDongle) {
  Look(
      [](DialogUser& user) {
        EXPECT_EQ(user.Tabs(), Lines{L"COM Port"});
        EXPECT_EQ(user.Captions(),
                  (Lines{L"COM port", L"Baud rate", L"Use RF modem (wireless)", L"Properties...",
                         L"Instrument address", L"Use redirector", L"OK", L"&Cancel", L"&Help"}));
        EXPECT_FALSE(user.Has(ID_CBO_PARITY));
        EXPECT_FALSE(user.Has(ID_CHK_USE_SMART_SWITCH));
      },
      {});
}

TEST_F(ComDialogTest, ExtendedPageAlone_IsTheSecondTab) {
  Look(
      [](DialogUser& user) {
        EXPECT_EQ(user.Tabs(), (Lines{L"COM Port", L"Extended"}));
        user.ClickTab(1);
        EXPECT_TRUE(user.IsVisible(ID_CBO_PARITY));
        EXPECT_FALSE(user.IsVisible(ID_ICBO_COM_PORT));
      },
      {.show_extended_page = true});
}

TEST_F(ComDialogTest, Opened_ShowsWhatIsSet) {
  port_.SetParity(EKespParity3::PARITY_MARK);
  port_.SetStripCRLF(false);
  port_.SetTimeOut(2500);
  Look([](DialogUser& user) {
    EXPECT_EQ(user.Entries(ID_ICBO_COM_PORT), (Lines{L"COM1", L"COM3", L"COM7"}));
    EXPECT_EQ(user.Selection(ID_ICBO_COM_PORT), 1);
    EXPECT_EQ(user.Entries(ID_CBO_PARITY), (Lines{L"None", L"Even", L"Odd", L"Mark", L"Space"}));
    EXPECT_EQ(user.Selection(ID_CBO_PARITY), 3);
    EXPECT_FALSE(user.IsChecked(ID_CHK_STRIP_CRLF));
    EXPECT_TRUE(user.IsChecked(ID_CHK_CHECK_NON_ASCII));
    EXPECT_EQ(user.Text(ID_TXT_TIMEOUT), L"2500");
    EXPECT_EQ(user.Range(ID_UD_TIMEOUT), (std::pair{100, 10000}));
  });
}

TEST_F(ComDialogTest, ListsWithImages_HoldTheirTextsForOtherPrograms) {
  Look([](DialogUser& user) {
    for (const auto& [id, entry] :
         {std::pair{ID_ICBO_COM_PORT, L"COM3"}, {ID_ICBO_SMART_SWITCH_STYLE, L"8-port"}}) {
      HWND combo = user.Control(id);
      COMBOBOXINFO parts{};
      parts.cbSize = sizeof(parts);
      EXPECT_NE(GetComboBoxInfo(combo, &parts), FALSE) << "it is no combo box of the system's";
      // By this the system knows that there are texts, when another program asks.
      EXPECT_NE(GetWindowLongPtrW(combo, GWL_STYLE) & CBS_HASSTRINGS, 0);
      std::array<wchar_t, 64> text{};
      Ask(parts.hwndList, LB_GETTEXT, 1, reinterpret_cast<LPARAM>(text.data()));
      EXPECT_EQ(std::wstring(text.data()), entry);
    }
    EXPECT_EQ(user.Text(ID_ICBO_COM_PORT), L"COM3");
  });
}

TEST_F(ComDialogTest, WithoutTheDongle_TheRowBelowTakesItsPlace) {
  const auto top_of = [](const DialogUser& user, int id) {
    HWND control = user.Control(id);
    return AreaOf(control).top - AreaOf(GetParent(control)).top;
  };
  LONG dongle = 0;
  Look([&](DialogUser& user) {
    dongle = top_of(user, ID_CHK_USE_IR_DONGLE);
    EXPECT_GT(top_of(user, ID_CMD_RF_PROPERTIES), dongle);
  });
  Look(
      [&](DialogUser& user) {
        EXPECT_EQ(top_of(user, ID_CMD_RF_PROPERTIES), dongle);
        EXPECT_GT(top_of(user, ID_CHK_USE_REDIRECTOR), top_of(user, ID_TXT_INSTR_ADDRESS));
        EXPECT_LT(top_of(user, ID_CBO_BAUD_RATE), dongle);
      },
      {});
}

TEST_F(ComDialogTest, ToolTips_StandOnThreeCheckBoxes) {
  Look([](DialogUser& user) {
    EXPECT_EQ(user.ToolTip(ID_CHK_USE_IR_DONGLE), L"Using IR dongle");
    EXPECT_EQ(user.ToolTip(ID_CHK_USE_RF_MODEM), L"Using RF modem for wireless communications");
    EXPECT_EQ(user.ToolTip(ID_CHK_USE_REDIRECTOR), L"Using COM port redirector software");
    EXPECT_EQ(user.ToolTip(ID_CHK_USE_SMART_SWITCH), L"");
  });
}

TEST_F(ComDialogTest, Lists_AreNamedByTheLabelBefore) {
  Look([](DialogUser& user) {
    const std::pair<int, const wchar_t*> names[] = {{ID_ICBO_COM_PORT, L"COM port"},
                                                    {ID_CBO_BAUD_RATE, L"Baud rate"},
                                                    {ID_TXT_INSTR_ADDRESS, L"Instrument address"},
                                                    {ID_ICBO_SMART_SWITCH_STYLE, L"SmartSwitch style"},
                                                    {ID_CBO_PARITY, L"Parity"},
                                                    {ID_CBO_DATA_BITS, L"Data bits"},
                                                    {ID_CBO_STOP_BITS, L"Stop bits"},
                                                    {ID_CBO_MIN_BAUD_RATE, L"Minimum baud rate"},
                                                    {ID_CBO_MAX_BAUD_RATE, L"Maximum baud rate"},
                                                    {ID_TXT_TIMEOUT, L"Timeout (msec)"},
                                                    {ID_CBO_CONTROLLER_STYLE, L"Controller style"}};
    for (const auto& [id, name] : names) EXPECT_EQ(user.NameOf(id), name);
  });
}

TEST_F(ComDialogTest, TabKey_GoesThroughTheVisiblePage) {
  Look([](DialogUser& user) {
    EXPECT_EQ(TabOrder(user),
              (Numbers{ID_ICBO_COM_PORT, ID_CBO_BAUD_RATE, ID_CHK_USE_IR_DONGLE, ID_CHK_USE_RF_MODEM,
                       ID_CHK_USE_REDIRECTOR, ID_OK, ID_CANCEL, ID_HELP, ID_TAB_SETTINGS}));
    user.Click(ID_CHK_USE_RF_MODEM);
    user.MoveTo(ID_ICBO_COM_PORT);
    EXPECT_EQ(TabOrder(user), (Numbers{ID_ICBO_COM_PORT, ID_CHK_USE_IR_DONGLE, ID_CHK_USE_RF_MODEM,
                                       ID_CMD_RF_PROPERTIES, ID_TXT_INSTR_ADDRESS, ID_CHK_USE_REDIRECTOR,
                                       ID_OK, ID_CANCEL, ID_HELP, ID_TAB_SETTINGS}));
    user.PressWith({VK_CONTROL}, VK_TAB);
    EXPECT_EQ(TabOrder(user), (Numbers{ID_CHK_USE_SMART_SWITCH, ID_OK, ID_CANCEL, ID_HELP, ID_TAB_SETTINGS}));
    user.PressWith({VK_CONTROL}, VK_TAB);
    ExpectTabOrder(
        user, {ID_CBO_PARITY, ID_CBO_DATA_BITS, ID_CBO_STOP_BITS, ID_CBO_MIN_BAUD_RATE, ID_CBO_MAX_BAUD_RATE,
               ID_TXT_TIMEOUT, ID_CBO_CONTROLLER_STYLE, ID_CHK_STRIP_CRLF, ID_CHK_CHECK_NON_ASCII,
               ID_CHK_CREATE_LOG_FILE, ID_OK, ID_CANCEL, ID_HELP, ID_TAB_SETTINGS});
  });
}

// From every port that there can be, the last one.
TEST_F(ComDialogTest, ChosenAndClicked_IsWritten) {
  ports_.codes.clear();
  ports_.code = 0;
  EXPECT_TRUE(Show([](DialogUser& user) {
    EXPECT_EQ(user.Entries(ID_ICBO_COM_PORT).size(), 256u);
    EXPECT_EQ(user.Selection(ID_ICBO_COM_PORT), 2);
    user.MoveTo(ID_ICBO_COM_PORT);
    user.Press(VK_F4);
    user.Press(VK_END);
    user.Press(VK_RETURN);
    EXPECT_EQ(user.Selection(ID_ICBO_COM_PORT), 255);
    user.Choose(ID_CBO_BAUD_RATE, 2);
    EXPECT_EQ(user.Text(ID_CBO_BAUD_RATE), L"1200");
    user.Click(ID_CHK_USE_REDIRECTOR);
    EXPECT_TRUE(user.IsChecked(ID_CHK_USE_REDIRECTOR));
    user.Click(ID_OK);
  }));
  EXPECT_EQ(port_.Port(), 256);
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br1200);
  EXPECT_TRUE(port_.UseRedirector());
}

// Whether the entry of before comes back then is the system's matter; what is shown is what is written.
TEST_F(ComDialogTest, ListClosedByEscape_KeepsTheDialogAndWritesWhatItShows) {
  std::wstring shown;
  EXPECT_TRUE(Show([&shown](DialogUser& user) {
    user.MoveTo(ID_CBO_BAUD_RATE);
    user.Press(VK_F4);
    user.Press(VK_UP);
    user.Press(VK_ESCAPE);
    shown = user.Text(ID_CBO_BAUD_RATE);
    user.Click(ID_OK);
  }));
  EXPECT_EQ(port_.BaudRateName(port_.BaudRate()), shown);
}

TEST_F(ComDialogTest, RangeOfRatesChosen_RebuildsTheListOfRates) {
  Look([](DialogUser& user) {
    user.ClickTab(kExtendedTab);
    user.Choose(ID_CBO_MAX_BAUD_RATE, 3);
    EXPECT_EQ(user.Entries(ID_CBO_BAUD_RATE), (Lines{L"300", L"600", L"1200"}));
    EXPECT_EQ(user.Selection(ID_CBO_BAUD_RATE), -1);
    user.Choose(ID_CBO_MIN_BAUD_RATE, 0);
    EXPECT_EQ(user.Entries(ID_CBO_BAUD_RATE), (Lines{L"150", L"300", L"600", L"1200"}));
    EXPECT_EQ(user.Selection(ID_CBO_BAUD_RATE), 0);
  });
}

TEST_F(ComDialogTest, BoxClicked_TheOthersShowWhatTheFormMakesOfIt) {
  Look([](DialogUser& user) {
    user.Click(ID_CHK_USE_IR_DONGLE);
    user.Click(ID_CHK_USE_RF_MODEM);
    ExpectBox(user.AnswerBox(L"RF Modem / IR Conflict", IDOK), IDI_ASTERISK,
              L"You cannot use the RF modem (wireless) feature and the IR dongle simultaneously.");
    EXPECT_FALSE(user.IsChecked(ID_CHK_USE_IR_DONGLE));
    EXPECT_TRUE(user.IsChecked(ID_CHK_USE_RF_MODEM));
    EXPECT_EQ(user.Text(ID_CBO_BAUD_RATE), L"9600");
    ExpectEnabled(user, {ID_LBL_BAUD_RATE, ID_CBO_BAUD_RATE}, false);
    ExpectEnabled(user, {ID_CMD_RF_PROPERTIES, ID_LBL_INSTR_ADDRESS, ID_TXT_INSTR_ADDRESS}, true);
    user.Click(ID_CHK_USE_RF_MODEM);
    ExpectEnabled(user, {ID_LBL_BAUD_RATE, ID_CBO_BAUD_RATE}, true);
    ExpectEnabled(user, {ID_CMD_RF_PROPERTIES, ID_LBL_INSTR_ADDRESS, ID_TXT_INSTR_ADDRESS}, false);
  });
}

TEST_F(ComDialogTest, MinimumAboveMaximum_IsRefusedOnItsPage) {
  Look([](DialogUser& user) {
    user.ClickTab(kExtendedTab);
    user.Choose(ID_CBO_MIN_BAUD_RATE, 12);
    user.ClickTab(0);
    user.Click(ID_OK);
    ExpectBox(user.AnswerBox(L"Invalid Baud Rate", IDOK), IDI_ASTERISK,
              L"Cannot set minimum baud rate higher than maximum baud rate setting.");
    EXPECT_EQ(user.Tab(), kExtendedTab);
    EXPECT_TRUE(user.IsVisible(ID_CBO_MIN_BAUD_RATE));
    EXPECT_FALSE(user.IsVisible(ID_CBO_BAUD_RATE));
    EXPECT_EQ(user.Focus(), ID_CBO_MIN_BAUD_RATE);
  });
}

// Windows gives the focus of what is hidden to its parent, which is no control that the box was left for.
void LoseFocusWhenHidden(const CWPRETSTRUCT& message) {
  const bool hidden = message.message == WM_SHOWWINDOW && message.wParam == FALSE;
  if (hidden && IsChild(message.hwnd, GetFocus()) != FALSE) SetFocus(GetParent(message.hwnd));
}

TEST_F(ComDialogTest, RefusalOnAnotherPage_LeavesTheBoxThatHadTheFocus) {
  const MessageHook hook(&LoseFocusWhenHidden);
  ports_.codes.clear();
  Look([](DialogUser& user) {
    EXPECT_EQ(user.Entries(ID_ICBO_COM_PORT), Lines{});
    user.ClickTab(kExtendedTab);
    user.MoveTo(ID_TXT_TIMEOUT);
    user.Type(L"5");
    user.Press(VK_RETURN);
    user.AnswerBox(L"Invalid COM Port", IDOK);
    EXPECT_EQ(user.Focus(), ID_ICBO_COM_PORT);
    EXPECT_EQ(user.Text(ID_TXT_TIMEOUT), L"100");
  });
}

TEST_F(ComDialogTest, RefusalOfAListThatIsOff_LeavesNoFocusOnTheHiddenPage) {
  Look([](DialogUser& user) {
    user.Click(ID_CHK_USE_RF_MODEM);
    user.ClickTab(kExtendedTab);
    user.Choose(ID_CBO_MIN_BAUD_RATE, 4);
    user.MoveTo(ID_TXT_TIMEOUT);
    user.Press(VK_RETURN);
    user.AnswerBox(L"Invalid Baud Rate", IDOK);
    EXPECT_EQ(user.Tab(), 0);
    EXPECT_FALSE(user.IsEnabled(ID_CBO_BAUD_RATE));
    EXPECT_EQ(user.Focus(), ID_ICBO_COM_PORT);
  });
}

}  // namespace
}  // namespace kesp
