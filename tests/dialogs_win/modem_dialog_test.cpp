// The radio modem's dialog on the screen, with the question that comes before it.
#include "dialog_fixture.h"
#include "dialogs/common_controls_win.h"

namespace kesp {
namespace {

using ModemDialogTest = ComDialogFixture;

TEST_F(ModemDialogTest, Properties_AskFirstAndStopAtCancel) {
  Look([](DialogUser& user) {
    user.Click(ID_CHK_USE_RF_MODEM);
    user.Click(ID_CMD_RF_PROPERTIES);
    const BoxContents box = user.AnswerBox(L"Connect RF Modem", IDCANCEL);
    EXPECT_EQ(box.buttons, (Lines{L"OK", L"Cancel"}));
    EXPECT_EQ(box.icon, LoadIconW(nullptr, IDI_ASTERISK));
    EXPECT_EQ(box.owner, user.window());
    EXPECT_FALSE(box.owner_enabled);
    EXPECT_NE(IsWindowEnabled(user.window()), FALSE);
  });
  EXPECT_FALSE(port_.UseRFModem());
}

TEST_F(ModemDialogTest, Opened_ShowsWhatTheModemHas) {
  LookAtModem([](DialogUser& modem) {
    EXPECT_EQ(WindowText(modem.window()), kModemCaption);
    EXPECT_EQ(modem.Tabs(), Lines{L"Properties"});
    EXPECT_EQ(
        modem.Captions(),
        (Lines{L"PAN ID", L"Channel", L"Modem address", L"Timeout (ms)", L"Serial number", L"13A20040B0C1D2",
               L"Power level 4", L"All settings are shown as decimal values", L"OK", L"&Cancel", L"&Help"}));
    EXPECT_EQ(Ask(modem.Control(ID_PB_POWER_LEVEL), PBM_GETPOS), 4);
    EXPECT_EQ(AreaOf(modem.Control(ID_PB_POWER_LEVEL)).right, AreaOf(modem.Control(ID_TXT_RF_TIMEOUT)).right);
    const std::tuple<int, const wchar_t*, const wchar_t*> boxes[] = {
        {ID_TXT_PAN_ID, L"PAN ID", L"13106"},
        {ID_TXT_CHANNEL, L"Channel", L"12"},
        {ID_TXT_RF_MODEM_ADDRESS, L"Modem address", L"26"},
        {ID_TXT_RF_TIMEOUT, L"Timeout (ms)", L"10000"}};
    for (const auto& [id, name, text] : boxes) {
      EXPECT_EQ(modem.NameOf(id), name);
      EXPECT_EQ(modem.Text(id), text);
    }
    EXPECT_EQ(TabOrder(modem), (Numbers{ID_TXT_PAN_ID, ID_TXT_CHANNEL, ID_TXT_RF_MODEM_ADDRESS,
                                        ID_TXT_RF_TIMEOUT, ID_OK, ID_CANCEL, ID_HELP, ID_TAB_SETTINGS}));
    modem.Press(VK_ESCAPE);
  });
  EXPECT_TRUE(port_.UseRFModem());
}

TEST_F(ModemDialogTest, Opened_BelongsToTheOuterDialogWhichWaits) {
  LookAtModem([](DialogUser& modem) {
    HWND outer = GetWindow(modem.window(), GW_OWNER);
    EXPECT_EQ(WindowText(outer), kComCaption);
    EXPECT_EQ(IsWindowEnabled(outer), FALSE);
    modem.CloseByTitleBar();
  });
}

TEST_F(ModemDialogTest, UnreadableModem_IsRemarkedOnAndLeavesTheOuterDialogUsable) {
  EXPECT_TRUE(Show([](DialogUser& user) {
    user.Click(ID_CHK_USE_RF_MODEM);
    user.Click(ID_CMD_RF_PROPERTIES);
    user.AnswerBox(L"Connect RF Modem", IDOK);
    EXPECT_EQ(user.AnswerBox(L"Query RF Modem Settings", IDOK).buttons, Lines{L"OK"});
    EXPECT_EQ(FindDialog(kModemCaption, GetWindowThreadProcessId(user.window(), nullptr)), nullptr);
    EXPECT_NE(IsWindowEnabled(user.window()), FALSE);
    user.MoveTo(ID_TXT_INSTR_ADDRESS);
    user.Type(L"1x7");
    user.Click(ID_OK);
  }));
  EXPECT_EQ(port_.InstrAddr(), 17);
}

}  // namespace
}  // namespace kesp
