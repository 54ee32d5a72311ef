// The RS-232 dialog's window: what it shows on each page, and how its controls act on one another.
#include "dialog_stage.h"

namespace kesp {
namespace {

using ComDialogWinTest = ComDialogStage;

constexpr int kSmartSwitchTab = 1;
constexpr int kExtendedTab = 2;

const Numbers kBaudRate = {ID_LBL_BAUD_RATE, ID_CBO_BAUD_RATE};
const Numbers kRadioModem = {ID_CMD_RF_PROPERTIES, ID_LBL_INSTR_ADDRESS, ID_TXT_INSTR_ADDRESS};
const Numbers kSmartSwitch = {ID_LBL_SMART_SWITCH_STYLE, ID_ICBO_SMART_SWITCH_STYLE,
                              ID_CMD_TEST_SMART_SWITCH};

void ExpectEnabled(const DialogUser& user, const Numbers& ids, bool enabled) {
  for (const int id : ids) EXPECT_EQ(user.IsEnabled(id), enabled) << id;
}

TEST_F(ComDialogWinTest, Opened_ShowsTitleTabsAndCaptions) {
  EXPECT_FALSE(Show([](DialogUser& user) {
    EXPECT_EQ(WindowText(user.window()), kComCaption);
    EXPECT_EQ(user.Tabs(), (Texts{L"COM Port", L"SmartSwitch", L"Extended"}));
    EXPECT_EQ(user.Tab(), 0);
    EXPECT_EQ(user.Captions(), (Texts{L"COM port", L"Baud rate", L"Use IR dongle", L"Use RF modem (wireless)",
                                      L"Properties...", L"Instrument address", L"Use redirector", L"OK",
                                      L"&Cancel", L"&Help"}));
    user.ClickTab(kSmartSwitchTab);
    EXPECT_EQ(user.Captions(), (Texts{L"Enable SmartSwitch", L"SmartSwitch style", L"&Test SmartSwitch",
                                      L"OK", L"&Cancel", L"&Help"}));
    user.ClickTab(kExtendedTab);
    EXPECT_EQ(user.Captions(),
              (Texts{L"Parity", L"Data bits", L"Stop bits", L"Minimum baud rate", L"Maximum baud rate",
                     L"Timeout (msec)", L"Controller style", L"Strip CR/LF", L"Check non-ASCII",
                     L"Create log file", L"OK", L"&Cancel", L"&Help"}));
    user.ClickTab(0);
    EXPECT_TRUE(user.IsVisible(ID_ICBO_COM_PORT));
    EXPECT_FALSE(user.IsVisible(ID_CBO_PARITY));
    user.Press(VK_ESCAPE);
  }));
}

TEST_F(ComDialogWinTest, WithoutFlags_ShowsTheFirstPageOnlyAndNoDongle) {
  EXPECT_FALSE(Show(
      [](DialogUser& user) {
        EXPECT_EQ(user.Tabs(), Texts{L"COM Port"});
        EXPECT_EQ(user.Captions(),
                  (Texts{L"COM port", L"Baud rate", L"Use RF modem (wireless)", L"Properties...",
                         L"Instrument address", L"Use redirector", L"OK", L"&Cancel", L"&Help"}));
        EXPECT_FALSE(user.Has(ID_CBO_PARITY));
        EXPECT_FALSE(user.Has(ID_CHK_USE_SMART_SWITCH));
        user.Press(VK_ESCAPE);
      },
      {}));
}

TEST_F(ComDialogWinTest, ExtendedPageAlone_IsTheSecondTab) {
  EXPECT_FALSE(Show(
      [](DialogUser& user) {
        EXPECT_EQ(user.Tabs(), (Texts{L"COM Port", L"Extended"}));
        user.ClickTab(1);
        EXPECT_TRUE(user.IsVisible(ID_CBO_PARITY));
        EXPECT_FALSE(user.IsVisible(ID_ICBO_COM_PORT));
        EXPECT_FALSE(user.Has(ID_CHK_USE_SMART_SWITCH));
        user.Press(VK_ESCAPE);
      },
      {.show_extended_page = true}));
}

TEST_F(ComDialogWinTest, Lists_HaveTheirEntriesAndShowWhatIsSet) {
  port_.SetParity(EKespParity3::PARITY_MARK);
  port_.SetDataBits(EKespDataBits3::DATA_7BITS);
  port_.SetStopBits(EKespStopBits3::STOP_2BITS);
  EXPECT_FALSE(Show([](DialogUser& user) {
    EXPECT_EQ(user.Entries(ID_ICBO_COM_PORT), (Texts{L"COM1", L"COM3", L"COM7"}));
    EXPECT_EQ(user.Selection(ID_ICBO_COM_PORT), 1);
    EXPECT_EQ(user.Entries(ID_CBO_BAUD_RATE), (Texts{L"300", L"600", L"1200", L"2400", L"4800", L"9600",
                                                     L"19200", L"38400", L"57600", L"115200"}));
    EXPECT_EQ(user.Selection(ID_CBO_BAUD_RATE), 8);
    EXPECT_EQ(user.Entries(ID_ICBO_SMART_SWITCH_STYLE), (Texts{L"6-port", L"8-port"}));
    EXPECT_EQ(user.Entries(ID_CBO_PARITY), (Texts{L"None", L"Even", L"Odd", L"Mark", L"Space"}));
    EXPECT_EQ(user.Selection(ID_CBO_PARITY), 3);
    EXPECT_EQ(user.Entries(ID_CBO_DATA_BITS), (Texts{L"4 bits", L"5 bits", L"6 bits", L"7 bits", L"8 bits"}));
    EXPECT_EQ(user.Selection(ID_CBO_DATA_BITS), 3);
    EXPECT_EQ(user.Entries(ID_CBO_STOP_BITS), (Texts{L"1 bit", L"1.5 bits", L"2 bits"}));
    EXPECT_EQ(user.Selection(ID_CBO_STOP_BITS), 2);
    EXPECT_EQ(user.Entries(ID_CBO_CONTROLLER_STYLE), (Texts{L"Kesp 7100/7200/7300", L"Omega 847/848"}));
    EXPECT_EQ(user.Selection(ID_CBO_CONTROLLER_STYLE), 0);
    const Texts rates = user.Entries(ID_CBO_MIN_BAUD_RATE);
    ASSERT_EQ(rates.size(), 14u);
    EXPECT_EQ(rates.front(), L"150");
    EXPECT_EQ(rates.back(), L"921600");
    EXPECT_EQ(user.Entries(ID_CBO_MAX_BAUD_RATE), rates);
    EXPECT_EQ(rates[static_cast<std::size_t>(user.Selection(ID_CBO_MIN_BAUD_RATE))], L"300");
    EXPECT_EQ(rates[static_cast<std::size_t>(user.Selection(ID_CBO_MAX_BAUD_RATE))], L"115200");
    user.Press(VK_ESCAPE);
  }));
}

TEST_F(ComDialogWinTest, ListsWithImages_HoldTheirTextsForOtherPrograms) {
  EXPECT_FALSE(Show([](DialogUser& user) {
    for (const int id : {ID_ICBO_COM_PORT, ID_ICBO_SMART_SWITCH_STYLE}) {
      HWND combo = user.Control(id);
      COMBOBOXINFO parts{};
      parts.cbSize = sizeof(parts);
      EXPECT_NE(GetComboBoxInfo(combo, &parts), FALSE) << "it is no combo box of the system's";
      // By this the system knows that there are texts, when another program asks.
      EXPECT_NE(GetWindowLongPtrW(combo, GWL_STYLE) & CBS_HASSTRINGS, 0);
      std::array<wchar_t, 64> text{};
      EXPECT_EQ(Ask(parts.hwndList, LB_GETTEXT, 1, reinterpret_cast<LPARAM>(text.data())),
                id == ID_ICBO_COM_PORT ? 4 : 6);
      EXPECT_EQ(std::wstring(text.data()), id == ID_ICBO_COM_PORT ? L"COM3" : L"8-port");
    }
    EXPECT_EQ(user.Text(ID_ICBO_COM_PORT), L"COM3");
    user.Press(VK_ESCAPE);
  }));
}

TEST_F(ComDialogWinTest, WithoutTheDongle_TheRowBelowTakesItsPlace) {
  const auto top_of = [](const DialogUser& user, int id) {
    RECT area{};
    GetWindowRect(user.Control(id), &area);
    RECT page{};
    GetWindowRect(GetParent(user.Control(id)), &page);
    return area.top - page.top;
  };
  LONG dongle = 0;
  EXPECT_FALSE(Show([&](DialogUser& user) {
    dongle = top_of(user, ID_CHK_USE_IR_DONGLE);
    EXPECT_GT(top_of(user, ID_CMD_RF_PROPERTIES), dongle);
    user.Press(VK_ESCAPE);
  }));
  EXPECT_FALSE(Show(
      [&](DialogUser& user) {
        EXPECT_EQ(top_of(user, ID_CMD_RF_PROPERTIES), dongle);
        EXPECT_GT(top_of(user, ID_CHK_USE_REDIRECTOR), top_of(user, ID_TXT_INSTR_ADDRESS));
        EXPECT_LT(top_of(user, ID_CBO_BAUD_RATE), dongle);
        user.Press(VK_ESCAPE);
      },
      {}));
}

TEST_F(ComDialogWinTest, ToolTips_StandOnThreeCheckBoxes) {
  EXPECT_FALSE(Show([](DialogUser& user) {
    EXPECT_EQ(user.ToolTip(ID_CHK_USE_IR_DONGLE), L"Using IR dongle");
    EXPECT_EQ(user.ToolTip(ID_CHK_USE_RF_MODEM), L"Using RF modem for wireless communications");
    EXPECT_EQ(user.ToolTip(ID_CHK_USE_REDIRECTOR), L"Using COM port redirector software");
    EXPECT_EQ(user.ToolTip(ID_CHK_USE_SMART_SWITCH), L"");
    user.Press(VK_ESCAPE);
  }));
}

TEST_F(ComDialogWinTest, CheckBoxesAndTimeout_ShowWhatIsSetAndAreWritten) {
  port_.SetStripCRLF(false);
  port_.SetCreateLogFile(true);
  port_.SetTimeOut(2500);
  EXPECT_TRUE(Show([](DialogUser& user) {
    EXPECT_FALSE(user.IsChecked(ID_CHK_STRIP_CRLF));
    EXPECT_TRUE(user.IsChecked(ID_CHK_CHECK_NON_ASCII));
    EXPECT_TRUE(user.IsChecked(ID_CHK_CREATE_LOG_FILE));
    EXPECT_EQ(user.Text(ID_TXT_TIMEOUT), L"2500");
    EXPECT_EQ(user.Range(ID_UD_TIMEOUT), (std::pair{100, 10000}));
    user.ClickTab(kExtendedTab);
    for (const int id : {ID_CHK_STRIP_CRLF, ID_CHK_CHECK_NON_ASCII, ID_CHK_CREATE_LOG_FILE}) user.Click(id);
    EXPECT_TRUE(user.IsChecked(ID_CHK_STRIP_CRLF));
    user.ClickArrow(ID_UD_TIMEOUT, true);
    user.ClickArrow(ID_UD_TIMEOUT, true);
    user.ClickArrow(ID_UD_TIMEOUT, false);
    EXPECT_EQ(user.Text(ID_TXT_TIMEOUT), L"2600");
    user.ClickTab(0);
    user.Click(ID_CHK_USE_REDIRECTOR);
    user.Click(ID_OK);
  }));
  EXPECT_TRUE(port_.StripCRLF());
  EXPECT_FALSE(port_.CheckNonAscii());
  EXPECT_FALSE(port_.CreateLogFile());
  EXPECT_TRUE(port_.UseRedirector());
  EXPECT_EQ(port_.TimeOut(), 2600);
}

TEST_F(ComDialogWinTest, Timeout_TakesSignsAndPointsUntilItIsLeft) {
  EXPECT_FALSE(Show([](DialogUser& user) {
    user.ClickTab(kExtendedTab);
    user.MoveTo(ID_TXT_TIMEOUT);
    EXPECT_EQ(user.SelectedText(ID_TXT_TIMEOUT), (std::pair<DWORD, DWORD>{0, 4}));
    user.Type(L"-5 x");
    EXPECT_EQ(user.Text(ID_TXT_TIMEOUT), L"-5");
    user.Press(VK_TAB);
    EXPECT_EQ(user.Text(ID_TXT_TIMEOUT), L"100");
    user.MoveTo(ID_TXT_TIMEOUT);
    user.Type(L"+20000.5");
    EXPECT_EQ(user.Text(ID_TXT_TIMEOUT), L"+20000.5");
    user.Press(VK_TAB);
    EXPECT_EQ(user.Text(ID_TXT_TIMEOUT), L"10000");
    user.Press(VK_ESCAPE);
  }));
}

TEST_F(ComDialogWinTest, RadioModem_FixesTheRateAndOpensItsControls) {
  EXPECT_TRUE(Show([](DialogUser& user) {
    ExpectEnabled(user, kBaudRate, true);
    ExpectEnabled(user, kRadioModem, false);
    user.Click(ID_CHK_USE_RF_MODEM);
    ExpectEnabled(user, kBaudRate, false);
    ExpectEnabled(user, kRadioModem, true);
    EXPECT_EQ(user.Text(ID_CBO_BAUD_RATE), L"9600");
    user.Click(ID_CHK_USE_RF_MODEM);
    ExpectEnabled(user, kBaudRate, true);
    ExpectEnabled(user, kRadioModem, false);
    user.Click(ID_CHK_USE_RF_MODEM);
    user.MoveTo(ID_TXT_INSTR_ADDRESS);
    user.Type(L"1x7");
    user.Press(VK_RETURN);
  }));
  EXPECT_TRUE(port_.UseRFModem());
  EXPECT_EQ(port_.InstrAddr(), 17);
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br9600);
}

TEST_F(ComDialogWinTest, RadioModemAndDongle_ExcludeEachOther) {
  const wchar_t* const conflict =
      L"You cannot use the RF modem (wireless) feature and the IR dongle simultaneously.";
  EXPECT_TRUE(Show([conflict](DialogUser& user) {
    user.Click(ID_CHK_USE_IR_DONGLE);
    user.Click(ID_CHK_USE_RF_MODEM);
    ExpectRemark(user.AnswerBox(L"RF Modem / IR Conflict", IDOK), conflict);
    EXPECT_FALSE(user.IsChecked(ID_CHK_USE_IR_DONGLE));
    EXPECT_TRUE(user.IsChecked(ID_CHK_USE_RF_MODEM));
    ExpectEnabled(user, kBaudRate, false);
    user.Click(ID_CHK_USE_IR_DONGLE);
    ExpectRemark(user.AnswerBox(L"RF Modem / IR Conflict", IDOK), conflict);
    EXPECT_TRUE(user.IsChecked(ID_CHK_USE_IR_DONGLE));
    EXPECT_FALSE(user.IsChecked(ID_CHK_USE_RF_MODEM));
    ExpectEnabled(user, kBaudRate, true);
    ExpectEnabled(user, kRadioModem, false);
    user.Click(ID_OK);
  }));
  EXPECT_TRUE(port_.UseIRDongle());
  EXPECT_FALSE(port_.UseRFModem());
}

TEST_F(ComDialogWinTest, SmartSwitch_EnablesItsStyleAndTest) {
  EXPECT_TRUE(Show([this](DialogUser& user) {
    user.ClickTab(kSmartSwitchTab);
    ExpectEnabled(user, kSmartSwitch, false);
    user.Click(ID_CHK_USE_SMART_SWITCH);
    ExpectEnabled(user, kSmartSwitch, true);
    user.Choose(ID_ICBO_SMART_SWITCH_STYLE, 1);
    EXPECT_EQ(user.Selection(ID_ICBO_SMART_SWITCH_STYLE), 1);
    EXPECT_EQ(ports_.line.writes.size(), 0u);
    user.Click(ID_CMD_TEST_SMART_SWITCH);
    // Tested with what the transport has, which is not what the dialog shows.
    EXPECT_FALSE(port_.UseSmartSwitch());
    user.Click(ID_OK);
  }));
  EXPECT_TRUE(port_.UseSmartSwitch());
  EXPECT_EQ(port_.SmartSwitch()->Style(), ESmartSwitchStyle3::ssBB8port);
}

}  // namespace
}  // namespace kesp
