// Unit tests of the serial transport's Edit: what happens around its settings dialog.
#include <new>
#include <stdexcept>
#include <string>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

constexpr wchar_t kHelpFile[] = L"C:\\help\\lab.hlp";

class CKespCOMPort3EditingTest : public SerialConversationTest {
 protected:
  // The showing of the dialog is part of the record.
  CKespCOMPort3EditingTest() {
    dialog_.on_show = [this](CKespCOMPort3&) { record_.push_back(L"Dialog"); };
  }

  bool Edit(std::int32_t flags = 0, const std::wstring& help_file = {}, std::int32_t help_context = 0) {
    return port_.Edit(As<EEditCommFlags>(flags), help_file, help_context);
  }

  // The next closing of the port cannot release the switch.
  void LetClosingFail() {
    port_.SetUseSmartSwitch(true);
    ports_.line.FailCall(1, 8020);
  }

  const std::vector<MessageBoxRequest>& Boxes() const { return environment_.user.boxes(); }
  // The only box, or the one of that index, tells of this error.
  void ExpectBox(const std::wstring& error, std::size_t index = 0) const {
    ASSERT_GT(Boxes().size(), index);
    EXPECT_EQ(Boxes()[index].title, L"Kesp Communications Error");
    EXPECT_EQ(Boxes()[index].style, 16u);
    EXPECT_EQ(Boxes()[index].text,
              L"An error occurred while attempting to edit COM port settings.\r\nError: " + error);
  }
  static std::wstring ClosingError() {
    return L"8020 - Error reading comm device\r\n(CKespCOMPort3 - ClosePort() [commCOMControl])";
  }
};

TEST_F(CKespCOMPort3EditingTest, Confirmed_TrueAndCancelled_False) {
  for (const bool answer : {true, false}) {
    dialog_.answer = answer;
    EXPECT_EQ(Edit(), answer);
    EXPECT_EQ(Edit(7, kHelpFile, 3), answer);
  }
  EXPECT_EQ(dialog_.shown.size(), 4u);
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(CKespCOMPort3EditingTest, PortThatIsOpen_IsClosedBeforeTheDialogIsShown) {
  Open();
  EXPECT_TRUE(Edit());
  EXPECT_EQ(record_, (Lines{L"Close", L"Dialog"}));
}

TEST_F(CKespCOMPort3EditingTest, PortThatIsClosed_NothingIsDoneToIt) {
  EXPECT_TRUE(Edit());
  EXPECT_EQ(record_, (Lines{L"Dialog"}));
  EXPECT_EQ(ports_.line.calls, 0);
}

TEST_F(CKespCOMPort3EditingTest, PortThatTheDialogLeavesOpen_IsClosedBehindIt) {
  dialog_.on_show = [this](CKespCOMPort3& port) {
    port.OpenPort();
    record_.push_back(L"Dialog ends");
  };
  for (const bool answer : {true, false}) {
    dialog_.answer = answer;
    record_.clear();
    EXPECT_EQ(Edit(), answer);
    EXPECT_EQ(record_, (Lines{L"Handshaking 0", L"Open COM1 9600,N,8,1", L"Dialog ends", L"Close"}));
    EXPECT_FALSE(ports_.line.open);
  }
}

TEST_F(CKespCOMPort3EditingTest, Closing_IsTheTransportsOwn) {
  StartLog();
  port_.SetUseSmartSwitch(true);
  Open();
  EXPECT_TRUE(Edit());
  EXPECT_EQ(Outputs(), (Lines{L"<1B><02><02><04>"}));
  EXPECT_EQ(record_.back(), L"Dialog");
  EXPECT_EQ(LogLines().back(), L"Closed COM port 1");
}

TEST_F(CKespCOMPort3EditingTest, HelpFile_IsSetBeforeTheDialogIsShown) {
  environment_.user.SetHelpFile(L"C:\\earlier.hlp");
  std::wstring seen;
  dialog_.on_show = [&](CKespCOMPort3&) { seen = environment_.user.help_file(); };
  EXPECT_TRUE(Edit(0, kHelpFile));
  EXPECT_EQ(seen, kHelpFile);
  EXPECT_EQ(environment_.user.help_file(), kHelpFile);
}

TEST_F(CKespCOMPort3EditingTest, EmptyHelpFile_TheEarlierOneStays) {
  environment_.user.SetHelpFile(kHelpFile);
  EXPECT_TRUE(Edit(7, L"", 12));
  EXPECT_EQ(environment_.user.help_file(), kHelpFile);
}

// Every combination of the four flags, and bits that have no name.
TEST_F(CKespCOMPort3EditingTest, Flags_EachOfThreeBitsShowsItsPart) {
  std::vector<std::int32_t> all{16, 32, 0x40000000, -1, kLowest32, kHighest32};
  for (std::int32_t flags = 0; flags < 16; ++flags) all.push_back(flags);
  for (const std::int32_t flags : all) {
    dialog_.shown.clear();
    EXPECT_TRUE(Edit(flags)) << flags;
    ASSERT_EQ(dialog_.shown.size(), 1u);
    EXPECT_EQ(dialog_.shown[0].show_extended_page, (flags & 1) != 0) << flags;
    EXPECT_EQ(dialog_.shown[0].show_smart_switch_page, (flags & 2) != 0) << flags;
    EXPECT_EQ(dialog_.shown[0].show_ir_dongle, (flags & 4) != 0) << flags;
  }
}

TEST_F(CKespCOMPort3EditingTest, HelpContext_IsHandedOn) {
  for (const std::int32_t number : {0, 1, 4711, -1, kLowest32, kHighest32}) {
    EXPECT_TRUE(Edit(0, L"", number));
    EXPECT_EQ(dialog_.shown.back().help_context, number);
  }
}

TEST_F(CKespCOMPort3EditingTest, ArgumentsLeftOut_ShowTheFirstPageOnlyAndNoTopic) {
  environment_.user.SetHelpFile(kHelpFile);
  EXPECT_TRUE(port_.Edit());
  ASSERT_EQ(dialog_.shown.size(), 1u);
  EXPECT_FALSE(dialog_.shown[0].show_extended_page);
  EXPECT_FALSE(dialog_.shown[0].show_smart_switch_page);
  EXPECT_FALSE(dialog_.shown[0].show_ir_dongle);
  EXPECT_EQ(dialog_.shown[0].help_context, 0);
  EXPECT_EQ(environment_.user.help_file(), kHelpFile);
}

TEST_F(CKespCOMPort3EditingTest, Dialog_WorksOnThisObject) {
  port_.SetTimeOut(777);
  dialog_.answer = false;
  dialog_.on_show = [this](CKespCOMPort3& port) {
    EXPECT_EQ(&port, &port_);
    EXPECT_EQ(port.TimeOut(), 777);
    port.SetTimeOut(888);
    port.SetPort(9);
  };
  EXPECT_FALSE(Edit());
  EXPECT_EQ(port_.TimeOut(), 888);
  EXPECT_EQ(port_.Port(), 9);
}

TEST_F(CKespCOMPort3EditingTest, SettingsThatTheDialogDoesNotTouch_Stay) {
  const auto before = Settings(port_);
  EXPECT_TRUE(Edit(15, kHelpFile, 3));
  EXPECT_TRUE(Settings(port_) == before);
}

TEST_F(CKespCOMPort3EditingTest, NewSettings_ReachThePortAtItsNextOpening) {
  Open();
  dialog_.on_show = [](CKespCOMPort3& port) { port.SetBaudRate(EKespBaudRate3::br19200); };
  EXPECT_TRUE(Edit());
  EXPECT_TRUE(port_.OpenPort());
  EXPECT_EQ(record_.back(), L"Open COM1 19200,N,8,1");
}

TEST_F(CKespCOMPort3EditingTest, DialogFails_IsShownAndFalse) {
  dialog_.on_show = [](CKespCOMPort3&) { throw Failure(7, L"dialog", L"Out of memory"); };
  EXPECT_FALSE(Edit());
  EXPECT_EQ(Boxes().size(), 1u);
  ExpectBox(L"7 - Out of memory\r\n(dialog)");
}

TEST_F(CKespCOMPort3EditingTest, DialogFailsInAnyOtherWay_IsShownAndFalse) {
  dialog_.on_show = [](CKespCOMPort3&) { throw std::runtime_error("no window"); };
  EXPECT_FALSE(Edit());
  dialog_.on_show = [](CKespCOMPort3&) { throw std::bad_alloc(); };
  EXPECT_FALSE(Edit());
  EXPECT_EQ(Boxes().size(), 2u);
  ExpectBox(L"51 - Internal error (no window)\r\n(KespCommObj)");
  ExpectBox(L"7 - Out of memory\r\n(KespCommObj)", 1);
}

TEST_F(CKespCOMPort3EditingTest, DialogFailsWithThePortOpen_ThePortIsClosedAllTheSame) {
  dialog_.on_show = [](CKespCOMPort3& port) {
    port.OpenPort();
    throw std::runtime_error("no window");
  };
  EXPECT_FALSE(Edit());
  EXPECT_FALSE(ports_.line.open);
  EXPECT_EQ(Boxes().size(), 1u);
}

TEST_F(CKespCOMPort3EditingTest, ClosingBeforeFails_IsShownAndNeitherHelpFileNorDialogFollow) {
  Open();
  LetClosingFail();
  EXPECT_FALSE(Edit(0, kHelpFile));
  EXPECT_EQ(Boxes().size(), 1u);
  ExpectBox(ClosingError());
  EXPECT_EQ(environment_.user.help_file(), L"");
  EXPECT_TRUE(dialog_.shown.empty());
  EXPECT_FALSE(ports_.line.open);
}

TEST_F(CKespCOMPort3EditingTest, ClosingBehindFails_IsShownAndTheAnswerIsTheDialogs) {
  dialog_.on_show = [this](CKespCOMPort3& port) {
    port.OpenPort();
    LetClosingFail();
  };
  for (const bool answer : {true, false}) {
    port_.SetUseSmartSwitch(false);
    dialog_.answer = answer;
    EXPECT_EQ(Edit(), answer);
    EXPECT_FALSE(ports_.line.open);
  }
  EXPECT_EQ(Boxes().size(), 2u);
  ExpectBox(ClosingError());
  ExpectBox(ClosingError(), 1);
}

TEST_F(CKespCOMPort3EditingTest, DialogAndClosingFail_BothAreShownInTheirOrder) {
  dialog_.on_show = [this](CKespCOMPort3& port) {
    port.OpenPort();
    LetClosingFail();
    throw std::runtime_error("no window");
  };
  EXPECT_FALSE(Edit());
  EXPECT_EQ(Boxes().size(), 2u);
  ExpectBox(L"51 - Internal error (no window)\r\n(KespCommObj)");
  ExpectBox(ClosingError(), 1);
  EXPECT_FALSE(ports_.line.open);
}

TEST_F(CKespCOMPort3EditingTest, NoScreen_FalseBehindTheOtherSteps) {
  CKespCOMPort3 port(environment_.environment, ports_, &events_);
  port.SetMaxBaudRate(Rate(6));
  port.SetBaudRate(Rate(6));
  port.OpenPort();
  EXPECT_FALSE(port.Edit(As<EEditCommFlags>(7), kHelpFile, 3));
  EXPECT_FALSE(ports_.line.open);
  EXPECT_EQ(environment_.user.help_file(), kHelpFile);
  EXPECT_TRUE(Boxes().empty());
  EXPECT_TRUE(dialog_.shown.empty());
}

TEST_F(CKespCOMPort3EditingTest, Editing_RaisesNoEvents) {
  Open();
  EXPECT_TRUE(Edit(7));
  EXPECT_EQ(Events(), Lines{});
}

}  // namespace
}  // namespace kesp
