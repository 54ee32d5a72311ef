// Typing into the boxes of the TCP/IP dialog's window: keys that pass, what a box does when it is left, and
// the clipboard.
#include "dialog_stage.h"

namespace kesp {
namespace {

using Range = std::pair<DWORD, DWORD>;

class TcpDialogTypingWinTest : public TcpDialogStage {
 protected:
  TcpDialogTypingWinTest() { tcp_.SetIPAddress(L"10.20.30.40"); }
};

TEST_F(TcpDialogTypingWinTest, AddressTyped_DotsMoveOnAndOkWritesIt) {
  EXPECT_TRUE(Show([](DialogUser& user) {
    EXPECT_EQ(user.Focus(), ID_TXT_IP);
    user.Type(L"192.168.0.10");
    const wchar_t* const octets[] = {L"192", L"168", L"0", L"10"};
    for (int index = 0; index < 4; ++index) EXPECT_EQ(user.Text(ID_TXT_IP + index), octets[index]);
    user.Press(VK_RETURN);
  }));
  EXPECT_EQ(tcp_.IPAddress(), L"192.168.0.10");
}

TEST_F(TcpDialogTypingWinTest, Dots_SelectTheNextBoxAndWrap) {
  EXPECT_FALSE(Show([](DialogUser& user) {
    const int next[] = {ID_TXT_IP + 1, ID_TXT_IP + 2, ID_TXT_IP + 3, ID_TXT_IP};
    for (const int box : next) {
      user.Type(L".");
      EXPECT_EQ(user.Focus(), box);
      EXPECT_EQ(user.SelectedText(box), (Range{0, 2}));
    }
    EXPECT_EQ(user.Text(ID_TXT_IP), L"10");
    user.Press(VK_ESCAPE);
  }));
}

TEST_F(TcpDialogTypingWinTest, TabKey_SelectsTheWholeBox) {
  EXPECT_FALSE(Show([](DialogUser& user) {
    user.MoveTo(ID_TXT_IP + 3);
    user.Press(VK_TAB);
    EXPECT_EQ(user.Focus(), ID_TXT_PORT);
    EXPECT_EQ(user.SelectedText(ID_TXT_PORT), (Range{0, 4}));
    user.PressWith({VK_SHIFT}, VK_TAB);
    EXPECT_EQ(user.Focus(), ID_TXT_IP + 3);
    EXPECT_EQ(user.SelectedText(ID_TXT_IP + 3), (Range{0, 2}));
    user.Press(VK_ESCAPE);
  }));
}

TEST_F(TcpDialogTypingWinTest, OtherKeysThanDigits_AreDropped) {
  EXPECT_FALSE(Show([](DialogUser& user) {
    user.MoveTo(ID_TXT_PORT);
    user.Type(
        L"1a b,2-+.x\u00e4\u20ac"
        L"3");
    EXPECT_EQ(user.Text(ID_TXT_PORT), L"123");
    user.Type(L"\b");
    EXPECT_EQ(user.Text(ID_TXT_PORT), L"12");
    EXPECT_EQ(user.Focus(), ID_TXT_PORT);
    user.ClickTab(1);
    user.MoveTo(ID_TXT_TCP_TIMEOUT);
    // Digits only, unlike the time-out of the RS-232 dialog.
    user.Type(L"-1.5,7");
    EXPECT_EQ(user.Text(ID_TXT_TCP_TIMEOUT), L"157");
    user.Press(VK_ESCAPE);
  }));
}

TEST_F(TcpDialogTypingWinTest, BoxLeft_HoldsANumberOfItsRange) {
  EXPECT_FALSE(Show([](DialogUser& user) {
    user.Type(L"300");
    EXPECT_EQ(user.Text(ID_TXT_IP), L"300");
    user.Press(VK_TAB);
    EXPECT_EQ(user.Text(ID_TXT_IP), L"255");
    user.Type(L"\b");
    EXPECT_EQ(user.Text(ID_TXT_IP + 1), L"");
    user.Type(L".");
    EXPECT_EQ(user.Text(ID_TXT_IP + 1), L"0");
    user.MoveTo(ID_TXT_PORT);
    user.Type(L"0");
    user.ClickTab(1);
    EXPECT_EQ(user.Text(ID_TXT_PORT), L"1");
    user.MoveTo(ID_TXT_TCP_TIMEOUT);
    user.Type(L"99");
    user.Click(ID_CHK_TCP_LOG_FILE);
    EXPECT_EQ(user.Text(ID_TXT_TCP_TIMEOUT), L"100");
    user.MoveTo(ID_TXT_TCP_TIMEOUT);
    user.Type(L"10001");
    user.Press(VK_TAB);
    EXPECT_EQ(user.Text(ID_TXT_TCP_TIMEOUT), L"10000");
    user.Press(VK_ESCAPE);
  }));
}

TEST_F(TcpDialogTypingWinTest, OkClicked_LeavesTheBoxFirst) {
  EXPECT_TRUE(Show([](DialogUser& user) {
    user.Type(L"300");
    user.Click(ID_OK);
  }));
  EXPECT_EQ(tcp_.IPAddress(), L"255.20.30.40");
}

TEST_F(TcpDialogTypingWinTest, EnterPressed_TakesTheTextAsItStands) {
  EXPECT_TRUE(Show([](DialogUser& user) {
    user.MoveTo(ID_TXT_IP + 2);
    user.Type(L"\b");
    user.Press(VK_RETURN);
  }));
  EXPECT_EQ(tcp_.IPAddress(), L"10.20..40");
}

TEST_F(TcpDialogTypingWinTest, AnotherWindowTakesTheFocus_TheBoxIsNotLeft) {
  EXPECT_FALSE(Show([](DialogUser& user) {
    user.Type(L"300");
    // As when another program comes to the front, and goes again.
    HWND box = user.Control(ID_TXT_IP);
    Ask(box, WM_KILLFOCUS);
    EXPECT_EQ(user.Text(ID_TXT_IP), L"300");
    Ask(box, EM_SETSEL, 1, 1);
    Ask(box, WM_SETFOCUS);
    EXPECT_EQ(user.SelectedText(ID_TXT_IP), (Range{1, 1}));
    user.Press(VK_ESCAPE);
  }));
}

TEST_F(TcpDialogTypingWinTest, MessageBoxInFront_TheBoxIsNotLeft) {
  EXPECT_FALSE(Show([](DialogUser& user) {
    user.Type(L"300");
    user.MoveTo(ID_TXT_PORT);
    user.Type(L"70000");
    user.Press(VK_RETURN);
    user.AnswerBox(L"Kesp Communications Error", IDOK);
    EXPECT_EQ(user.Focus(), ID_TXT_PORT);
    EXPECT_EQ(user.Text(ID_TXT_PORT), L"70000");
    user.Press(VK_TAB);
    EXPECT_EQ(user.Text(ID_TXT_PORT), L"65535");
    user.Press(VK_ESCAPE);
  }));
}

TEST_F(TcpDialogTypingWinTest, LettersPasted_StayUntilTheBoxIsLeft) {
  EXPECT_FALSE(Show([](DialogUser& user) {
    Copy(L"7x");
    user.MoveTo(ID_TXT_PORT);
    user.Type(L"\x16");  // Ctrl+V
    EXPECT_EQ(user.Text(ID_TXT_PORT), L"7x");
    user.Press(VK_TAB);
    EXPECT_EQ(user.Text(ID_TXT_PORT), L"7");
    Copy(L"abc");
    user.MoveTo(ID_TXT_PORT);
    user.Type(L"\x16");
    EXPECT_EQ(user.Text(ID_TXT_PORT), L"abc");
    user.Press(VK_TAB);
    EXPECT_EQ(user.Text(ID_TXT_PORT), L"1");
    user.Press(VK_ESCAPE);
  }));
}

TEST_F(TcpDialogTypingWinTest, CtrlCAndCtrlX_FillTheClipboard) {
  EXPECT_FALSE(Show([](DialogUser& user) {
    Copy(L"-");
    user.MoveTo(ID_TXT_PORT);
    user.Type(L"\x03");
    EXPECT_EQ(Copied(), L"5025");
    user.MoveTo(ID_TXT_IP);
    user.Type(L"\x18");
    EXPECT_EQ(Copied(), L"10");
    EXPECT_EQ(user.Text(ID_TXT_IP), L"");
    user.Type(L"\x1a");  // Ctrl+Z
    EXPECT_EQ(user.Text(ID_TXT_IP), L"10");
    user.Press(VK_ESCAPE);
  }));
}

}  // namespace
}  // namespace kesp
