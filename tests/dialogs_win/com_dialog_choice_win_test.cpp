// Choosing in the lists of the RS-232 dialog's window, what OK refuses there, and going through its controls
// by keys.
#include "dialog_stage.h"
#include "message_hook.h"

namespace kesp {
namespace {

using ComDialogChoiceWinTest = ComDialogStage;

constexpr int kExtendedTab = 2;

TEST_F(ComDialogChoiceWinTest, PortAndRateChosen_AreWritten) {
  EXPECT_TRUE(Show([](DialogUser& user) {
    user.Choose(ID_ICBO_COM_PORT, 2);
    EXPECT_EQ(user.Selection(ID_ICBO_COM_PORT), 2);
    user.Choose(ID_CBO_BAUD_RATE, 2);
    EXPECT_EQ(user.Text(ID_CBO_BAUD_RATE), L"1200");
    user.Click(ID_OK);
  }));
  EXPECT_EQ(port_.Port(), 7);
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br1200);
}

// Whether the entry of before comes back then is the system's matter; what is shown is what is written.
TEST_F(ComDialogChoiceWinTest, ListClosedByEscape_KeepsTheDialogAndWritesWhatItShows) {
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

TEST_F(ComDialogChoiceWinTest, RangeOfRatesChosen_RebuildsTheListOfRates) {
  EXPECT_TRUE(Show([](DialogUser& user) {
    user.ClickTab(kExtendedTab);
    user.Choose(ID_CBO_MAX_BAUD_RATE, 3);
    EXPECT_EQ(user.Entries(ID_CBO_BAUD_RATE), (Texts{L"300", L"600", L"1200"}));
    EXPECT_EQ(user.Selection(ID_CBO_BAUD_RATE), -1);
    user.Choose(ID_CBO_MIN_BAUD_RATE, 0);
    EXPECT_EQ(user.Entries(ID_CBO_BAUD_RATE), (Texts{L"150", L"300", L"600", L"1200"}));
    EXPECT_EQ(user.Selection(ID_CBO_BAUD_RATE), 0);
    user.Click(ID_OK);
  }));
  EXPECT_EQ(port_.MinBaudRate(), EKespBaudRate3::br150);
  EXPECT_EQ(port_.MaxBaudRate(), EKespBaudRate3::br1200);
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br150);
}

TEST_F(ComDialogChoiceWinTest, ControllerStyleChosen_IsWrittenAtOnceWithItsFraming) {
  EXPECT_FALSE(Show([this](DialogUser& user) {
    user.ClickTab(kExtendedTab);
    user.Choose(ID_CBO_CONTROLLER_STYLE, 1);
    EXPECT_EQ(port_.ControllerStyle(), EKespControllerStyle3::CS_OMEGA);
    EXPECT_EQ(user.Selection(ID_CBO_PARITY), static_cast<int>(port_.Parity()));
    EXPECT_EQ(user.Selection(ID_CBO_DATA_BITS), static_cast<int>(port_.DataBits()));
    EXPECT_EQ(user.Text(ID_CBO_DATA_BITS), L"7 bits");
    user.Click(ID_CANCEL);
  }));
  EXPECT_EQ(port_.ControllerStyle(), EKespControllerStyle3::CS_OMEGA);
}

TEST_F(ComDialogChoiceWinTest, MinimumAboveMaximum_IsRefusedOnItsPage) {
  EXPECT_FALSE(Show([](DialogUser& user) {
    user.ClickTab(kExtendedTab);
    user.Choose(ID_CBO_MIN_BAUD_RATE, 12);
    user.ClickTab(0);
    user.Click(ID_OK);
    ExpectRemark(user.AnswerBox(L"Invalid Baud Rate", IDOK),
                 L"Cannot set minimum baud rate higher than maximum baud rate setting.");
    EXPECT_EQ(user.Tab(), kExtendedTab);
    EXPECT_TRUE(user.IsVisible(ID_CBO_MIN_BAUD_RATE));
    EXPECT_FALSE(user.IsVisible(ID_CBO_BAUD_RATE));
    EXPECT_EQ(user.Focus(), ID_CBO_MIN_BAUD_RATE);
    user.Click(ID_CANCEL);
  }));
  EXPECT_EQ(port_.MinBaudRate(), EKespBaudRate3::br300);
}

TEST_F(ComDialogChoiceWinTest, MinimumAboveTheOldMaximum_ShowsTheErrorAndKeepsTheDialogUsable) {
  EXPECT_TRUE(Show([](DialogUser& user) {
    user.ClickTab(kExtendedTab);
    user.Choose(ID_CBO_MAX_BAUD_RATE, 13);
    user.Choose(ID_CBO_MIN_BAUD_RATE, 13);
    user.ClickTab(0);
    user.Choose(ID_CBO_BAUD_RATE, 0);
    user.Click(ID_OK);
    const BoxContents box = user.AnswerBox(L"Kesp Communications Error", IDOK);
    ASSERT_EQ(box.texts.size(), 1u);
    EXPECT_EQ(box.texts[0].find(L"An error occurred while attempting to gather communication settings.\r\n"),
              0u);
    EXPECT_EQ(user.Text(ID_CBO_BAUD_RATE), L"921600");
    user.ClickTab(kExtendedTab);
    user.Choose(ID_CBO_MIN_BAUD_RATE, 0);
    user.Click(ID_OK);
  }));
  EXPECT_EQ(port_.MinBaudRate(), EKespBaudRate3::br150);
  EXPECT_EQ(port_.MaxBaudRate(), EKespBaudRate3::br921600);
}

TEST_F(ComDialogChoiceWinTest, NoPort_IsRefused) {
  ports_.codes.clear();
  EXPECT_FALSE(Show([](DialogUser& user) {
    EXPECT_EQ(user.Entries(ID_ICBO_COM_PORT), Texts{});
    user.ClickTab(1);
    user.Click(ID_OK);
    ExpectRemark(user.AnswerBox(L"Invalid COM Port", IDOK), L"Select a valid COM port to use.");
    EXPECT_EQ(user.Tab(), 0);
    EXPECT_EQ(user.Focus(), ID_ICBO_COM_PORT);
    user.Click(ID_CHK_USE_RF_MODEM);
    user.Click(ID_CMD_RF_PROPERTIES);
    ExpectRemark(user.AnswerBox(L"Invalid COM Port", IDOK), L"Select a valid COM port to use.");
    user.Press(VK_ESCAPE);
  }));
}

// Windows gives the focus of what is hidden to its parent, which is no control that the box was left for.
void LoseFocusWhenHidden(const CWPRETSTRUCT& message) {
  const bool hidden = message.message == WM_SHOWWINDOW && message.wParam == FALSE;
  if (hidden && IsChild(message.hwnd, GetFocus()) != FALSE) SetFocus(GetParent(message.hwnd));
}

TEST_F(ComDialogChoiceWinTest, RefusalOnAnotherPage_LeavesTheBoxThatHadTheFocus) {
  const MessageHook hook(&LoseFocusWhenHidden);
  ports_.codes.clear();
  EXPECT_FALSE(Show(
      [](DialogUser& user) {
        user.ClickTab(1);
        user.MoveTo(ID_TXT_TIMEOUT);
        user.Type(L"5");
        user.Press(VK_RETURN);
        user.AnswerBox(L"Invalid COM Port", IDOK);
        EXPECT_EQ(user.Focus(), ID_ICBO_COM_PORT);
        EXPECT_EQ(user.Text(ID_TXT_TIMEOUT), L"100");
        user.Press(VK_ESCAPE);
      },
      {.show_extended_page = true}));
}

TEST_F(ComDialogChoiceWinTest, NoRate_IsRefused) {
  EXPECT_FALSE(Show([](DialogUser& user) {
    user.ClickTab(kExtendedTab);
    user.Choose(ID_CBO_MAX_BAUD_RATE, 3);
    user.Press(VK_RETURN);
    ExpectRemark(user.AnswerBox(L"Invalid Baud Rate", IDOK), L"Select the baud rate.");
    EXPECT_EQ(user.Tab(), 0);
    EXPECT_EQ(user.Focus(), ID_CBO_BAUD_RATE);
    user.Press(VK_ESCAPE);
  }));
}

TEST_F(ComDialogChoiceWinTest, NoRateInAListThatIsOff_LeavesNoFocusOnTheHiddenPage) {
  EXPECT_FALSE(Show([](DialogUser& user) {
    user.Click(ID_CHK_USE_RF_MODEM);
    user.ClickTab(2);
    user.Choose(ID_CBO_MIN_BAUD_RATE, 4);
    user.MoveTo(ID_TXT_TIMEOUT);
    user.Press(VK_RETURN);
    ExpectRemark(user.AnswerBox(L"Invalid Baud Rate", IDOK), L"Select the baud rate.");
    EXPECT_EQ(user.Tab(), 0);
    EXPECT_FALSE(user.IsEnabled(ID_CBO_BAUD_RATE));
    EXPECT_EQ(user.Focus(), ID_ICBO_COM_PORT);
    user.Press(VK_ESCAPE);
  }));
}

TEST_F(ComDialogChoiceWinTest, InstrumentAddress_IsCheckedWithARadioModemOnly) {
  constexpr wchar_t kTitle[] = L"Invalid Instrument Address";
  constexpr wchar_t kRange[] =
      L"The instrument address entered is invalid. Enter an address between 1 and 65535.";
  EXPECT_TRUE(Show([&](DialogUser& user) {
    user.Click(ID_CHK_USE_RF_MODEM);
    user.MoveTo(ID_TXT_INSTR_ADDRESS);
    user.Type(L"\b");
    user.ClickTab(kExtendedTab);
    user.Press(VK_RETURN);
    ExpectRemark(user.AnswerBox(kTitle, IDOK), L"Enter the instrument address.");
    EXPECT_EQ(user.Tab(), 0);
    EXPECT_EQ(user.Focus(), ID_TXT_INSTR_ADDRESS);
    for (const wchar_t* const address : {L"0", L"70000"}) {
      user.Type(address);
      user.Click(ID_OK);
      ExpectRemark(user.AnswerBox(kTitle, IDOK), kRange);
      EXPECT_EQ(user.Focus(), ID_TXT_INSTR_ADDRESS);
    }
    user.Type(L"40000");
    user.Press(VK_RETURN);
    ExpectErrorBox(user.AnswerBox(L"Kesp Communications Error", IDOK),
                   L"An error occurred while attempting to gather communication settings.\r\nError: 6 - "
                   L"Overflow\r\n(KespCommObj)");
    EXPECT_EQ(user.Text(ID_TXT_INSTR_ADDRESS), L"40000");
    user.MoveTo(ID_TXT_INSTR_ADDRESS);
    user.Type(L"0");
    user.Click(ID_CHK_USE_RF_MODEM);
    user.Click(ID_OK);
  }));
  EXPECT_EQ(port_.InstrAddr(), 0);
}

TEST_F(ComDialogChoiceWinTest, TabKey_GoesThroughTheVisiblePage) {
  EXPECT_FALSE(Show([](DialogUser& user) {
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
    const Numbers extended = {ID_CBO_PARITY,
                              ID_CBO_DATA_BITS,
                              ID_CBO_STOP_BITS,
                              ID_CBO_MIN_BAUD_RATE,
                              ID_CBO_MAX_BAUD_RATE,
                              ID_TXT_TIMEOUT,
                              ID_CBO_CONTROLLER_STYLE,
                              ID_CHK_STRIP_CRLF,
                              ID_CHK_CHECK_NON_ASCII,
                              ID_CHK_CREATE_LOG_FILE,
                              ID_OK,
                              ID_CANCEL,
                              ID_HELP,
                              ID_TAB_SETTINGS};
    EXPECT_EQ(TabOrder(user), extended);
    Numbers back = extended;
    std::reverse(back.begin() + 1, back.end());
    EXPECT_EQ(TabOrder(user, true), back);
    user.Press(VK_ESCAPE);
  }));
}

TEST_F(ComDialogChoiceWinTest, Lists_AreNamedByTheLabelBefore) {
  EXPECT_FALSE(Show([](DialogUser& user) {
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
    user.Press(VK_ESCAPE);
  }));
}

TEST_F(ComDialogChoiceWinTest, EveryPortThereCanBe_IsListedAndReached) {
  ports_.codes.clear();
  ports_.code = 0;
  EXPECT_TRUE(Show([](DialogUser& user) {
    const Texts ports = user.Entries(ID_ICBO_COM_PORT);
    ASSERT_EQ(ports.size(), 256u);
    EXPECT_EQ(ports.back(), L"COM256");
    EXPECT_EQ(user.Selection(ID_ICBO_COM_PORT), 2);
    user.MoveTo(ID_ICBO_COM_PORT);
    user.Press(VK_F4);
    user.Press(VK_END);
    user.Press(VK_RETURN);
    EXPECT_EQ(user.Selection(ID_ICBO_COM_PORT), 255);
    user.Click(ID_OK);
  }));
  EXPECT_EQ(port_.Port(), 256);
}

}  // namespace
}  // namespace kesp
