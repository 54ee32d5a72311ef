// Typing into the text boxes of the TCP/IP dialog's window: keys that pass, what a box does when it is left,
// and the clipboard.
#include <stdexcept>

#include "dialog_fixture.h"
#include "dialogs/frm_tcp_settings.h"
#include "dialogs/number_edit_win.h"
#include "support/environment_win.h"

namespace kesp {
namespace {

void Copy(const std::wstring& text) {
  const std::size_t size = (text.size() + 1) * sizeof(wchar_t);
  HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, size);
  CopyMemory(GlobalLock(memory), text.c_str(), size);
  GlobalUnlock(memory);
  // Another program may be looking at the clipboard.
  EXPECT_TRUE(WaitFor([] { return OpenClipboard(nullptr) != FALSE; }));
  EmptyClipboard();
  SetClipboardData(CF_UNICODETEXT, memory);
  CloseClipboard();
}

class NumberBoxesTest : public TcpDialogFixture {
 protected:
  NumberBoxesTest() { tcp_.SetIPAddress(L"10.20.30.40"); }

  // What the port's box shows when that was typed, then when it is left by the Tab key.
  static Lines TypedAndLeft(DialogUser& user, const std::wstring& text) {
    user.MoveTo(ID_TXT_PORT);
    user.Type(text);
    std::wstring typed = user.Text(ID_TXT_PORT);
    user.Press(VK_TAB);
    return {typed, user.Text(ID_TXT_PORT)};
  }
};

TEST_F(NumberBoxesTest, AddressTyped_DotsSelectTheNextBoxAndWrapAndOkWritesIt) {
  EXPECT_TRUE(Show([](DialogUser& user) {
    EXPECT_EQ(user.Focus(), ID_TXT_IP);
    user.Type(L"192.");
    EXPECT_EQ(user.Focus(), ID_TXT_IP + 1);
    EXPECT_EQ(user.SelectedText(ID_TXT_IP + 1), (Range{0, 2}));
    user.Type(L"168.0.10.");
    const wchar_t* const octets[] = {L"192", L"168", L"0", L"10"};
    for (int index = 0; index < 4; ++index) EXPECT_EQ(user.Text(ID_TXT_IP + index), octets[index]);
    EXPECT_EQ(user.Focus(), ID_TXT_IP);
    user.Press(VK_RETURN);
  }));
  EXPECT_EQ(tcp_.IPAddress(), L"192.168.0.10");
}

TEST_F(NumberBoxesTest, TabKey_SelectsTheWholeBox) {
  Look([](DialogUser& user) {
    user.MoveTo(ID_TXT_IP + 3);
    user.Press(VK_TAB);
    EXPECT_EQ(user.SelectedText(ID_TXT_PORT), (Range{0, 4}));
    user.PressWith({VK_SHIFT}, VK_TAB);
    EXPECT_EQ(user.SelectedText(ID_TXT_IP + 3), (Range{0, 2}));
  });
}

TEST_F(NumberBoxesTest, OtherKeysThanDigits_AreDropped) {
  Look([](DialogUser& user) {
    user.MoveTo(ID_TXT_PORT);
    user.Type(
        L"1a b,2-+.x\u00e4\u20ac"
        L"3");
    EXPECT_EQ(user.Text(ID_TXT_PORT), L"123");
    user.Type(L"\b");
    EXPECT_EQ(user.Text(ID_TXT_PORT), L"12");
    EXPECT_EQ(user.Focus(), ID_TXT_PORT);
  });
}

TEST_F(NumberBoxesTest, LeftInWhateverWay_HoldsANumberOfItsRange) {
  EXPECT_TRUE(Show([](DialogUser& user) {
    user.Type(L"300");
    EXPECT_EQ(user.Text(ID_TXT_IP), L"300");
    user.Press(VK_TAB);
    EXPECT_EQ(user.Text(ID_TXT_IP), L"255");
    user.Type(L"\b.");
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
    user.Click(ID_OK);
  }));
  EXPECT_EQ(tcp_.IPAddress(), L"255.0.30.40");
  EXPECT_EQ(tcp_.TimeOutmSecs(), 10000);
}

// Unfiltered, it would hand any text to the transport.
TEST_F(NumberBoxesTest, KeysThatCannotBeHad_AreRefused) {
  frmTCPSettings form(SystemEnvironment().user, tcp_, kEverything);
  HWND no_control = nullptr;
  EXPECT_THROW(NumberEdit(form, form.txtPort, no_control, GetDesktopWindow()), std::runtime_error);
}

TEST_F(NumberBoxesTest, EnterPressed_TakesTheTextAsItStands) {
  EXPECT_TRUE(Show([](DialogUser& user) {
    user.MoveTo(ID_TXT_IP + 2);
    user.Type(L"\b");
    user.Press(VK_RETURN);
  }));
  EXPECT_EQ(tcp_.IPAddress(), L"10.20..40");
}

TEST_F(NumberBoxesTest, AnotherWindowTakesTheFocus_TheBoxIsNotLeft) {
  Look([](DialogUser& user) {
    user.Type(L"300");
    // As when another program comes to the front, and goes again.
    HWND box = user.Control(ID_TXT_IP);
    Ask(box, WM_KILLFOCUS);
    EXPECT_EQ(user.Text(ID_TXT_IP), L"300");
    Ask(box, EM_SETSEL, 1, 1);
    Ask(box, WM_SETFOCUS);
    EXPECT_EQ(user.SelectedText(ID_TXT_IP), (Range{1, 1}));
  });
}

TEST_F(NumberBoxesTest, ErrorBoxInFront_TheBoxIsNotLeftAndTheDialogStaysUsable) {
  EXPECT_TRUE(Show([](DialogUser& user) {
    user.MoveTo(ID_TXT_PORT);
    user.Type(L"70000");
    user.Press(VK_RETURN);
    ExpectBox(user.AnswerBox(L"Kesp Communications Error", IDOK), IDI_HAND,
              L"An error occurred while attempting to gather communication settings.\r\nError: 6 - "
              L"Overflow\r\n(KespCommObj)");
    EXPECT_EQ(user.Focus(), ID_TXT_PORT);
    EXPECT_EQ(user.Text(ID_TXT_PORT), L"70000");
    user.Press(VK_TAB);
    EXPECT_EQ(user.Text(ID_TXT_PORT), L"65535");
    user.MoveTo(ID_TXT_PORT);
    user.Type(L"5026");
    user.Click(ID_OK);
  }));
  EXPECT_EQ(tcp_.Port(), 5026);
}

TEST_F(NumberBoxesTest, LettersPasted_StayUntilTheBoxIsLeft) {
  Look([](DialogUser& user) {
    constexpr wchar_t kPaste[] = L"\x16";  // Ctrl+V; the other keys of the clipboard pass as it does
    Copy(L"7x");
    EXPECT_EQ(TypedAndLeft(user, kPaste), (Lines{L"7x", L"7"}));
    Copy(L"abc");
    EXPECT_EQ(TypedAndLeft(user, kPaste), (Lines{L"abc", L"1"}));
  });
}

}  // namespace
}  // namespace kesp
