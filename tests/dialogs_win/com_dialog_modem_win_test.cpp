// The radio modem's dialog on the screen, from the question that comes before it to the one that comes after.
#include "dialog_stage.h"
#include "dialogs/common_controls_win.h"

namespace kesp {
namespace {

using Range = std::pair<DWORD, DWORD>;

constexpr wchar_t kQuestion[] = L"Do you want to write these settings to NVRAM?";

class ComDialogModemWinTest : public ComDialogStage {
 protected:
  // Opens the modem's dialog, does that in it, and leaves the RS-232 dialog with Cancel.
  void ShowModem(const DialogUser::Act& act) {
    ConnectModem();
    EXPECT_FALSE(Show([&act](DialogUser& user) {
      user.Click(ID_CHK_USE_RF_MODEM);
      user.Click(ID_CMD_RF_PROPERTIES);
      user.AnswerBox(L"Connect RF Modem", IDOK);
      user.In(kModemCaption, act);
      EXPECT_NE(IsWindowEnabled(user.window()), FALSE);
      user.Press(VK_ESCAPE);
    }));
  }

  // Which settings were sent to the modem, in order.
  std::vector<std::string> Written() const {
    std::vector<std::string> settings;
    for (const std::string& bytes : ports_.line.writes) {
      if (bytes.size() > 5 || bytes == "ATWR\r") settings.push_back(bytes);
    }
    return settings;
  }
};

TEST_F(ComDialogModemWinTest, Properties_AskFirstAndStopAtCancel) {
  EXPECT_FALSE(Show([](DialogUser& user) {
    user.Click(ID_CHK_USE_RF_MODEM);
    user.Click(ID_CMD_RF_PROPERTIES);
    const BoxContents box = user.AnswerBox(L"Connect RF Modem", IDCANCEL);
    EXPECT_EQ(
        box.texts,
        Texts{L"Make sure the RF modem is connected to COM3 and set to operate at 9600 baud. Click OK to "
              L"continue or click Cancel to abort."});
    EXPECT_EQ(box.buttons, (Texts{L"OK", L"Cancel"}));
    EXPECT_EQ(box.icon, LoadIconW(nullptr, reinterpret_cast<const wchar_t*>(IDI_ASTERISK)));
    EXPECT_EQ(box.owner, user.window());
    EXPECT_FALSE(box.owner_enabled);
    EXPECT_NE(IsWindowEnabled(user.window()), FALSE);
    user.Press(VK_ESCAPE);
  }));
  EXPECT_FALSE(port_.UseRFModem());
}

TEST_F(ComDialogModemWinTest, OtherRate_IsRemarkedOn) {
  port_.SetMaxBaudRate(EKespBaudRate3::br115200);
  port_.SetMinBaudRate(EKespBaudRate3::br57600);
  EXPECT_FALSE(Show([](DialogUser& user) {
    user.Click(ID_CHK_USE_RF_MODEM);
    // There is no 9600 to be fixed on.
    EXPECT_TRUE(user.IsEnabled(ID_CBO_BAUD_RATE));
    user.Click(ID_CMD_RF_PROPERTIES);
    EXPECT_EQ(user.AnswerBox(L"Connect RF Modem", IDCANCEL).texts,
              Texts{L"Make sure the RF modem is connected to COM3 and set to operate at 57600 baud.\r\r"
                    L"Note: The factory default baud rate for the RF modem is 9600. Click OK to continue or "
                    L"click Cancel to abort."});
    user.Press(VK_ESCAPE);
  }));
}

TEST_F(ComDialogModemWinTest, Opened_ShowsWhatTheModemHas) {
  ShowModem([](DialogUser& modem) {
    EXPECT_EQ(WindowText(modem.window()), kModemCaption);
    EXPECT_EQ(modem.Tabs(), Texts{L"Properties"});
    EXPECT_EQ(modem.Captions(),
              (Texts{L"PAN ID", L"Channel", L"Modem address", L"Timeout (ms)", L"Serial number",
                     modem.Text(ID_LBL_SERIAL), L"Power level 3", L"All settings are shown as decimal values",
                     L"OK", L"&Cancel", L"&Help"}));
    EXPECT_NE(modem.Text(ID_LBL_SERIAL), L"");
    EXPECT_EQ(Ask(modem.Control(ID_PB_POWER_LEVEL), PBM_GETPOS), 3);
    RECT bar{};
    GetWindowRect(modem.Control(ID_PB_POWER_LEVEL), &bar);
    RECT box{};
    GetWindowRect(modem.Control(ID_TXT_RF_TIMEOUT), &box);
    EXPECT_EQ(bar.right, box.right);
    EXPECT_EQ(modem.Text(ID_TXT_PAN_ID), L"13106");
    EXPECT_EQ(modem.Text(ID_TXT_CHANNEL), L"12");
    EXPECT_EQ(modem.Text(ID_TXT_RF_MODEM_ADDRESS), L"26");
    EXPECT_EQ(modem.Text(ID_TXT_RF_TIMEOUT), L"10000");
    EXPECT_EQ(modem.NameOf(ID_TXT_PAN_ID), L"PAN ID");
    EXPECT_EQ(modem.NameOf(ID_TXT_CHANNEL), L"Channel");
    EXPECT_EQ(modem.NameOf(ID_TXT_RF_MODEM_ADDRESS), L"Modem address");
    EXPECT_EQ(modem.NameOf(ID_TXT_RF_TIMEOUT), L"Timeout (ms)");
    EXPECT_EQ(modem.Focus(), ID_TXT_PAN_ID);
    EXPECT_EQ(TabOrder(modem), (Numbers{ID_TXT_PAN_ID, ID_TXT_CHANNEL, ID_TXT_RF_MODEM_ADDRESS,
                                        ID_TXT_RF_TIMEOUT, ID_OK, ID_CANCEL, ID_HELP, ID_TAB_SETTINGS}));
    modem.Press(VK_ESCAPE);
  });
  EXPECT_TRUE(port_.UseRFModem());
  EXPECT_EQ(port_.MinBaudRate(), EKespBaudRate3::br1200);
  EXPECT_EQ(Written(), std::vector<std::string>{});
}

TEST_F(ComDialogModemWinTest, Opened_BelongsToTheOuterDialogWhichWaits) {
  ConnectModem();
  EXPECT_FALSE(Show([](DialogUser& user) {
    HWND outer = user.window();
    user.Click(ID_CHK_USE_RF_MODEM);
    user.Click(ID_CMD_RF_PROPERTIES);
    user.AnswerBox(L"Connect RF Modem", IDOK);
    user.In(kModemCaption, [outer](DialogUser& modem) {
      EXPECT_EQ(GetWindow(modem.window(), GW_OWNER), outer);
      EXPECT_EQ(IsWindowEnabled(outer), FALSE);
      modem.CloseByTitleBar();
    });
    EXPECT_NE(IsWindowEnabled(outer), FALSE);
    EXPECT_EQ(user.Focus(), ID_CMD_RF_PROPERTIES);
    user.Press(VK_ESCAPE);
  }));
}

TEST_F(ComDialogModemWinTest, ChannelOutOfRange_IsRefusedOnEnterAndBroughtInOnTab) {
  ShowModem([](DialogUser& modem) {
    modem.MoveTo(ID_TXT_CHANNEL);
    modem.Type(L"11");
    modem.Press(VK_RETURN);
    ExpectRemark(modem.AnswerBox(L"Invalid RF Channel", IDOK),
                 L"The RF channel entered is invalid. Enter a value between 12 and 24.");
    EXPECT_EQ(modem.Focus(), ID_TXT_CHANNEL);
    EXPECT_EQ(modem.Text(ID_TXT_CHANNEL), L"11");
    modem.Press(VK_TAB);
    EXPECT_EQ(modem.Text(ID_TXT_CHANNEL), L"12");
    EXPECT_EQ(modem.SelectedText(ID_TXT_RF_MODEM_ADDRESS), (Range{0, 2}));
    modem.MoveTo(ID_TXT_CHANNEL);
    modem.Type(L"30");
    modem.Press(VK_TAB);
    EXPECT_EQ(modem.Text(ID_TXT_CHANNEL), L"24");
    modem.MoveTo(ID_TXT_CHANNEL);
    modem.Type(L"\b");
    modem.Press(VK_TAB);
    EXPECT_EQ(modem.Text(ID_TXT_CHANNEL), L"12");
    modem.Press(VK_ESCAPE);
  });
}

TEST_F(ComDialogModemWinTest, EveryBox_IsRefusedWhenEmptyOrOutOfRange) {
  struct Refusal {
    int box;
    const wchar_t* typed;
    const wchar_t* title;
    const wchar_t* text;
  };
  const Refusal refusals[] = {
      {ID_TXT_PAN_ID, L"\b", L"Invalid PAN ID", L"Enter the RF PAN ID."},
      {ID_TXT_PAN_ID, L"65536", L"Invalid PAN ID",
       L"The RF PAN ID entered is invalid. Enter a value between 1 and 65535."},
      {ID_TXT_CHANNEL, L"\b", L"Invalid RF Channel", L"Enter the RF channel."},
      {ID_TXT_CHANNEL, L"25", L"Invalid RF Channel",
       L"The RF channel entered is invalid. Enter a value between 12 and 24."},
      {ID_TXT_RF_MODEM_ADDRESS, L"\b", L"Invalid Modem Address", L"Enter the RF modem address."},
      {ID_TXT_RF_MODEM_ADDRESS, L"0", L"Invalid Modem Address",
       L"The RF modem address entered is invalid. Enter a value between 1 and 65535."},
      {ID_TXT_RF_TIMEOUT, L"\b", L"Invalid Timeout", L"Enter a Timeout interval."},
      {ID_TXT_RF_TIMEOUT, L"1", L"Invalid Timeout",
       L"The timeout interval entered is invalid. Enter a value between 2 and 65535."}};
  ShowModem([&refusals](DialogUser& modem) {
    for (const Refusal& refusal : refusals) {
      modem.MoveTo(refusal.box);
      modem.Type(refusal.typed);
      modem.Press(VK_RETURN);
      ExpectRemark(modem.AnswerBox(refusal.title, IDOK), refusal.text);
      EXPECT_EQ(modem.Focus(), refusal.box);
    }
    modem.Press(VK_ESCAPE);
  });
  EXPECT_EQ(Written(), std::vector<std::string>{});
}

TEST_F(ComDialogModemWinTest, OkAndNo_WritesWithoutKeeping) {
  ShowModem([](DialogUser& modem) {
    modem.Type(L"1x6");
    modem.Click(ID_OK);
    const BoxContents box = modem.AnswerBox(kModemCaption, IDNO);
    EXPECT_EQ(box.texts, Texts{kQuestion});
    EXPECT_EQ(box.buttons, (Texts{L"Yes", L"No"}));
    EXPECT_EQ(box.icon, nullptr);
    EXPECT_EQ(box.owner, modem.window());
  });
  ASSERT_EQ(Written().size(), 4u);
  EXPECT_EQ(Written()[0], "ATID10\r");
}

TEST_F(ComDialogModemWinTest, OkAndYes_KeepsItInTheModem) {
  ShowModem([](DialogUser& modem) {
    modem.Press(VK_RETURN);
    modem.AnswerBox(kModemCaption, IDYES);
  });
  ASSERT_EQ(Written().size(), 5u);
  EXPECT_EQ(Written()[4], "ATWR\r");
}

TEST_F(ComDialogModemWinTest, UnreadableModem_IsRemarkedOnAndLeavesTheOuterDialogUsable) {
  EXPECT_TRUE(Show([](DialogUser& user) {
    user.Click(ID_CHK_USE_RF_MODEM);
    user.Click(ID_CMD_RF_PROPERTIES);
    user.AnswerBox(L"Connect RF Modem", IDOK);
    ExpectRemark(
        user.AnswerBox(L"Query RF Modem Settings", IDOK),
        L"Unable to read settings from RF modem. Make sure the modem is connected to COM3 and set to "
        L"operate at 9600 baud.");
    EXPECT_EQ(FindDialog(kModemCaption, GetWindowThreadProcessId(user.window(), nullptr)), nullptr);
    EXPECT_NE(IsWindowEnabled(user.window()), FALSE);
    user.MoveTo(ID_TXT_INSTR_ADDRESS);
    user.Type(L"17");
    user.Click(ID_OK);
  }));
  EXPECT_EQ(port_.InstrAddr(), 17);
}

}  // namespace
}  // namespace kesp
