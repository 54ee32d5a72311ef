// The TCP/IP dialog of the registered library: what is typed is what the properties say, and Cancel leaves
// them.
#include <gtest/gtest.h>

#include "dialogs/dialog_ids.h"
#include "tests/clients/dialog_editing.h"
#include "tests/clients/help_viewer.h"
#include "tests/win/html_help_fake.h"

namespace kesp::clients {
namespace {

constexpr wchar_t kCaption[] = L"TCP/IP Communication Settings";

class TcpEditingTest : public testing::Test {
 protected:
  TcpEditingTest() {
    EXPECT_EQ(WriteByReference(edited_.comm, &_CKespCommObj::put_CommStyle, csTCPIP), S_OK);
    EXPECT_EQ(ReadObject(edited_.comm, &_CKespCommObj::get_CommObject).As(&edited_.transport), S_OK);
    EXPECT_EQ(Write(tcp(), &_CKespTCP::put_IPAddress, L"10.20.30.40"), S_OK);
    EXPECT_EQ(Write(tcp(), &_CKespTCP::put_Port, 5025), S_OK);
    EXPECT_EQ(Write(tcp(), &_CKespTCP::put_TimeOutmSecs, 700), S_OK);
  }

  const ComPtr<_CKespTCP>& tcp() const { return edited_.transport; }
  bool Edit(EditCall call, const EditArguments& given, const DialogUser::Act& act) const {
    const DialogUser user(kCaption, act);
    return edited_.Edit(call, given);
  }
  // Types another address and port, and turns to the other page for the rest.
  static void TypeAll(DialogUser& user) {
    EXPECT_EQ(user.Focus(), ID_TXT_IP);
    user.Type(L"192.168.0.17");
    user.MoveTo(ID_TXT_PORT);
    user.Type(L"10002");
    user.ClickTab(1);
    user.MoveTo(ID_TXT_TCP_TIMEOUT);
    user.Type(L"2500");
    user.Click(ID_CHK_TCP_LOG_FILE);
  }
  void ExpectSettings(const std::wstring& address, short port, short time_out, bool log_file) {
    EXPECT_EQ(Read(tcp(), &_CKespTCP::get_IPAddress), address);
    EXPECT_EQ(Read(tcp(), &_CKespTCP::get_Port), port);
    EXPECT_EQ(Read(tcp(), &_CKespTCP::get_TimeOutmSecs), time_out);
    EXPECT_EQ(Read(tcp(), &_CKespTCP::get_CreateLogFile) == VARIANT_TRUE, log_file);
    EXPECT_EQ(Read(tcp(), &_CKespTCP::get_IPType), ipStatic);
  }

  Apartment apartment_;
  EditedObject<_CKespTCP> edited_{Create<_CKespCommObj>(__uuidof(CKespCommObj)), nullptr};
};

class TcpEditingCallTest : public TcpEditingTest, public testing::WithParamInterface<EditCall> {};

INSTANTIATE_TEST_SUITE_P(Calls, TcpEditingCallTest,
                         testing::Values(EditCall::kTransportEarly, EditCall::kTransportLate,
                                         EditCall::kFacadeEarly, EditCall::kFacadeLate),
                         EditCallName);

TEST_P(TcpEditingCallTest, Typed_IsWhatThePropertiesSay) {
  EXPECT_TRUE(Edit(GetParam(), {.flags = ecfShowTCPExtendedTab}, [](DialogUser& user) {
    EXPECT_EQ(user.Text(ID_TXT_IP), L"10");
    EXPECT_EQ(user.Text(ID_TXT_IP + 3), L"40");
    EXPECT_EQ(user.Text(ID_TXT_PORT), L"5025");
    EXPECT_EQ(user.Text(ID_TXT_TCP_TIMEOUT), L"700");
    TypeAll(user);
    user.Click(ID_OK);
  }));
  ExpectSettings(L"192.168.0.17", 10002, 2500, true);
}

TEST_P(TcpEditingCallTest, Cancelled_IsFalseAndLeavesAllAsItWas) {
  EXPECT_FALSE(Edit(GetParam(), {.flags = ecfShowTCPExtendedTab}, [](DialogUser& user) {
    TypeAll(user);
    user.Click(ID_CANCEL);
  }));
  ExpectSettings(L"10.20.30.40", 5025, 700, false);
}

TEST_F(TcpEditingTest, OtherFlags_ShowTheFirstPageAlone) {
  EXPECT_TRUE(Edit(EditCall::kFacadeEarly, {.flags = ~long{ecfShowTCPExtendedTab}}, [](DialogUser& user) {
    EXPECT_EQ(user.Tabs(), (std::vector<std::wstring>{L"General"}));
    EXPECT_FALSE(user.Has(ID_TXT_TCP_TIMEOUT));
    user.Press(VK_RETURN);
  }));
  ExpectSettings(L"10.20.30.40", 5025, 700, false);
}

TEST_F(TcpEditingTest, Discovery_IsAllThatChanges) {
  EXPECT_TRUE(Edit(EditCall::kTransportEarly, {}, [](DialogUser& user) {
    user.Type(L"99");
    user.Click(ID_OPT_TCP_TYPE + 1);
    EXPECT_FALSE(user.IsEnabled(ID_TXT_IP));
    user.Click(ID_OK);
  }));
  EXPECT_EQ(Read(tcp(), &_CKespTCP::get_IPType), ipDynamic);
  EXPECT_EQ(Read(tcp(), &_CKespTCP::get_IPAddress), L"10.20.30.40");
}

TEST_F(TcpEditingTest, PortBeyondTheProperty_IsToldInABoxAndTheDialogStays) {
  EXPECT_FALSE(Edit(EditCall::kFacadeLate, {}, [](DialogUser& user) {
    user.MoveTo(ID_TXT_PORT);
    user.Type(L"40000");
    user.Click(ID_OK);
    const BoxContents box = user.AnswerBox(L"Kesp Communications Error", IDOK);
    EXPECT_EQ(box.texts, (std::vector<std::wstring>{
                             L"An error occurred while attempting to gather communication settings.\r\n"
                             L"Error: 6 - Overflow\r\n(KespCommObj)"}));
    EXPECT_EQ(box.owner, user.window());
    user.Press(VK_ESCAPE);
  }));
  EXPECT_EQ(Read(tcp(), &_CKespTCP::get_Port), 5025);
}

TEST_F(TcpEditingTest, HelpOfACompiledHtmlFile_IsHtmlHelpThatBelongsToTheDialog) {
  const HtmlHelpFake html_help;
  HWND dialog = nullptr;
  const EditArguments given{.help_file = L"C:\\help\\lab tcp.chm", .help_context = 70001};
  EXPECT_FALSE(Edit(EditCall::kTransportEarly, given, [&dialog](DialogUser& user) {
    dialog = user.window();
    user.Click(ID_HELP);
    user.Click(ID_CANCEL);
  }));
  EXPECT_EQ(html_help.calls(),
            (std::vector<HtmlHelpFake::Call>{{dialog, L"C:\\help\\lab tcp.chm", 0x000F, 70001}}));
}

TEST_F(TcpEditingTest, Help_OpensTheFileAndTopicThatEditWasGiven) {
  const HelpViewer viewer;
  for (const EditCall call : {EditCall::kTransportEarly, EditCall::kFacadeLate}) {
    SCOPED_TRACE(static_cast<int>(call));
    const long topic = 70001 + static_cast<long>(call);
    const int before = viewer.requests();
    const EditArguments given{.help_file = L"C:\\help\\lab tcp.hlp", .help_context = topic};
    EXPECT_FALSE(Edit(call, given, [](DialogUser& user) {
      user.Click(ID_HELP);
      user.Click(ID_CANCEL);
    }));
    EXPECT_EQ(viewer.requests(), before + 1);
    EXPECT_TRUE(viewer.Mentions("C:\\help\\lab tcp.hlp"));
    EXPECT_TRUE(viewer.Mentions(topic));
  }
}

}  // namespace
}  // namespace kesp::clients
