// The TCP/IP dialog of the registered library: what is typed is what the properties say, Cancel leaves them,
// and its help is that of the file and topic that Edit was given.
#include <gtest/gtest.h>

#include "dialogs/dialog_ids.h"
#include "tests/clients/dialog_editing.h"
#include "tests/clients/help_viewer.h"
#include "tests/win/html_help_fake.h"

namespace kesp::clients {
namespace {

class TcpEditingTest : public EditingFixture<_CKespTCP> {
 protected:
  TcpEditingTest() : EditingFixture(L"TCP/IP Communication Settings") {
    EXPECT_EQ(WriteByReference(comm_, &_CKespCommObj::put_CommStyle, csTCPIP), S_OK);
    EXPECT_EQ(ReadObject(comm_, &_CKespCommObj::get_CommObject).As(&transport_), S_OK);
    EXPECT_EQ(Write(transport_, &_CKespTCP::put_IPAddress, L"10.20.30.40"), S_OK);
    EXPECT_EQ(Write(transport_, &_CKespTCP::put_Port, 5025), S_OK);
    EXPECT_EQ(Write(transport_, &_CKespTCP::put_TimeOutmSecs, 700), S_OK);
  }

  // Types another address and port, and turns to the other page for the rest.
  static void TypeAll(DialogUser& user) {
    EXPECT_EQ(user.Focus(), ID_TXT_IP);
    EXPECT_EQ(user.Text(ID_TXT_IP + 3), L"40");
    EXPECT_EQ(user.Text(ID_TXT_TCP_TIMEOUT), L"700");
    user.Type(L"192.168.0.17");
    user.MoveTo(ID_TXT_PORT);
    user.Type(L"10002");
    user.ClickTab(1);
    user.MoveTo(ID_TXT_TCP_TIMEOUT);
    user.Type(L"2500");
    user.Click(ID_CHK_TCP_LOG_FILE);
  }
  void ExpectSettings(const std::wstring& address, short port, short time_out, bool log_file) {
    EXPECT_EQ(Read(transport_, &_CKespTCP::get_IPAddress), address);
    EXPECT_EQ(Read(transport_, &_CKespTCP::get_Port), port);
    EXPECT_EQ(Read(transport_, &_CKespTCP::get_TimeOutmSecs), time_out);
    EXPECT_EQ(Read(transport_, &_CKespTCP::get_CreateLogFile) == VARIANT_TRUE, log_file);
  }
};

class TcpEditingCallTest : public TcpEditingTest, public testing::WithParamInterface<EditCall> {};

INSTANTIATE_TEST_SUITE_P(Calls, TcpEditingCallTest, testing::ValuesIn(kEditCalls));

TEST_P(TcpEditingCallTest, Typed_IsWhatThePropertiesSayAndCancelLeavesThem) {
  for (const auto& [button, confirmed] : {std::pair{ID_CANCEL, false}, {ID_OK, true}}) {
    EXPECT_EQ(Edit(GetParam(), {.flags = ecfShowTCPExtendedTab},
                   [button = button](DialogUser& user) {
                     TypeAll(user);
                     user.Click(button);
                   }),
              confirmed);
    if (!confirmed) ExpectSettings(L"10.20.30.40", 5025, 700, false);
  }
  ExpectSettings(L"192.168.0.17", 10002, 2500, true);
}

// Asks for help and leaves the dialog.
void AskForHelp(DialogUser& user) {
  user.Click(ID_HELP);
  user.Click(ID_CANCEL);
}

TEST_F(TcpEditingTest, HelpOfACompiledHtmlFile_IsHtmlHelpThatBelongsToTheDialog) {
  const HtmlHelpFake html_help;
  HWND dialog = nullptr;
  const EditArguments given{.help_file = L"C:\\help\\lab tcp.chm", .help_context = 70001};
  EXPECT_FALSE(Edit(EditCall::kTransportEarly, given, [&dialog](DialogUser& user) {
    dialog = user.window();
    AskForHelp(user);
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
    EXPECT_FALSE(Edit(call, {.help_file = L"C:\\help\\lab tcp.hlp", .help_context = topic}, &AskForHelp));
    EXPECT_EQ(viewer.requests(), before + 1);
    EXPECT_TRUE(viewer.Mentions("C:\\help\\lab tcp.hlp"));
    EXPECT_TRUE(viewer.Mentions(topic));
  }
}

}  // namespace
}  // namespace kesp::clients
