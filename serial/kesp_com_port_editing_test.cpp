// Unit tests of the serial transport's Edit: what happens around its settings dialog.
#include <new>
#include <stdexcept>
#include <string>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

constexpr wchar_t kHelpFile[] = L"C:\\help\\lab.hlp";

class CKespCOMPort3EditingTest : public SerialConversationFixture {
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

  void ExpectFailureBox(const std::wstring& error, std::size_t count = 1) {
    ExpectBox(L"attempting to edit COM port settings", error, count);
  }

  static constexpr wchar_t kClosingError[] =
      L"8020 - Error reading comm device\r\n(CKespCOMPort3 - ClosePort() [commCOMControl])";
};

TEST_F(CKespCOMPort3EditingTest, PortThatIsOpen_IsClosedBeforeTheDialogWhoseAnswerIsReturned) {
  for (const bool answer : {true, false}) {
    dialog_.answer = answer;
    port_.SetUseSmartSwitch(true);
    Open();
    EXPECT_EQ(Edit(7, kHelpFile, 3), answer);
    EXPECT_EQ(record_, (Lines{L"ClearOut", L"ClearIn", L"Output <1B><02><02><04>", L"Close", L"Dialog"}));
    record_.clear();
    const int calls = ports_.line.faults.calls();
    EXPECT_EQ(Edit(), answer);
    EXPECT_EQ(record_, (Lines{L"Dialog"})) << "of a closed port";
    EXPECT_EQ(ports_.line.faults.calls(), calls);
  }
  EXPECT_TRUE(environment_.user.boxes().empty());
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
  }
}

TEST_F(CKespCOMPort3EditingTest, HelpFile_IsSetBeforeTheDialogIsShownUnlessItIsEmpty) {
  environment_.user.SetHelpFile(L"C:\\earlier.hlp");
  std::wstring seen;
  dialog_.on_show = [&](CKespCOMPort3&) { seen = environment_.user.help_file(); };
  EXPECT_TRUE(Edit(7, L"", 12));
  EXPECT_EQ(seen, L"C:\\earlier.hlp");
  EXPECT_TRUE(Edit(0, kHelpFile));
  EXPECT_EQ(seen, kHelpFile);
  EXPECT_EQ(environment_.user.help_file(), kHelpFile);
}

// Every combination of the four flags, and bits that have no name.
TEST_F(CKespCOMPort3EditingTest, Flags_EachOfThreeBitsShowsItsPart) {
  std::vector<std::int32_t> all{16, 32, 0x40000000, -1, kLowest32, kHighest32};
  for (std::int32_t flags = 0; flags < 16; ++flags) all.push_back(flags);
  for (const std::int32_t flags : all) {
    EXPECT_TRUE(Edit(flags, L"", flags)) << flags;
    const ComPortDialogOptions& options = dialog_.shown.back();
    EXPECT_EQ(options.show_extended_page, (flags & 1) != 0) << flags;
    EXPECT_EQ(options.show_smart_switch_page, (flags & 2) != 0) << flags;
    EXPECT_EQ(options.show_ir_dongle, (flags & 4) != 0) << flags;
    EXPECT_EQ(options.help_context, flags);
  }
  EXPECT_EQ(dialog_.shown.size(), all.size());
}

TEST_F(CKespCOMPort3EditingTest, ArgumentsLeftOut_ShowTheFirstPageOnlyAndNoTopic) {
  EXPECT_TRUE(port_.Edit());
  const ComPortDialogOptions& options = dialog_.shown.at(0);
  EXPECT_FALSE(options.show_extended_page || options.show_smart_switch_page || options.show_ir_dongle);
  EXPECT_EQ(options.help_context, 0);
  EXPECT_EQ(environment_.user.help_file(), L"");
}

TEST_F(CKespCOMPort3EditingTest, Dialog_WorksOnThisObject) {
  port_.SetTimeOut(777);
  dialog_.answer = false;
  dialog_.on_show = [this](CKespCOMPort3& port) {
    EXPECT_EQ(&port, &port_);
    EXPECT_EQ(port.TimeOut(), 777);
    port.SetTimeOut(888);
  };
  EXPECT_FALSE(Edit());
  EXPECT_EQ(port_.TimeOut(), 888);
}

TEST_F(CKespCOMPort3EditingTest, DialogFails_IsShownAndFalseAndThePortClosed) {
  dialog_.on_show = [](CKespCOMPort3&) { throw Failure(7, L"dialog", L"Out of memory"); };
  EXPECT_FALSE(Edit());
  ExpectFailureBox(L"7 - Out of memory\r\n(dialog)");
  dialog_.on_show = [](CKespCOMPort3&) { throw std::bad_alloc(); };
  EXPECT_FALSE(Edit());
  ExpectFailureBox(L"7 - Out of memory\r\n(KespCommObj)", 2);
  dialog_.on_show = [](CKespCOMPort3& port) {
    port.OpenPort();
    throw std::runtime_error("no window");
  };
  EXPECT_FALSE(Edit());
  ExpectFailureBox(L"51 - Internal error (no window)\r\n(KespCommObj)", 3);
  EXPECT_FALSE(ports_.line.open);
}

TEST_F(CKespCOMPort3EditingTest, ClosingBeforeFails_IsShownAndNeitherHelpFileNorDialogFollow) {
  Open();
  LetClosingFail();
  EXPECT_FALSE(Edit(0, kHelpFile));
  ExpectFailureBox(kClosingError);
  EXPECT_EQ(environment_.user.help_file(), L"");
  EXPECT_TRUE(dialog_.shown.empty());
  EXPECT_FALSE(ports_.line.open);
}

TEST_F(CKespCOMPort3EditingTest, ClosingBehindFails_IsShownAndTheAnswerIsTheDialogs) {
  dialog_.on_show = [this](CKespCOMPort3& port) {
    port.OpenPort();
    LetClosingFail();
  };
  std::size_t boxes = 0;
  for (const bool answer : {true, false}) {
    port_.SetUseSmartSwitch(false);
    dialog_.answer = answer;
    EXPECT_EQ(Edit(), answer);
    ExpectFailureBox(kClosingError, ++boxes);
    EXPECT_FALSE(ports_.line.open);
  }
}

TEST_F(CKespCOMPort3EditingTest, DialogAndClosingFail_BothAreShownInTheirOrder) {
  dialog_.on_show = [this](CKespCOMPort3& port) {
    port.OpenPort();
    LetClosingFail();
    throw std::runtime_error("no window");
  };
  EXPECT_FALSE(Edit());
  ExpectFailureBox(kClosingError, 2);
}

TEST_F(CKespCOMPort3EditingTest, NoScreen_FalseBehindTheOtherSteps) {
  CKespCOMPort3 port(environment_.environment, ports_, &events_);
  port.SetMaxBaudRate(Rate(6));
  port.SetBaudRate(Rate(6));
  port.OpenPort();
  EXPECT_FALSE(port.Edit(As<EEditCommFlags>(7), kHelpFile, 3));
  EXPECT_FALSE(ports_.line.open);
  EXPECT_EQ(environment_.user.help_file(), kHelpFile);
  EXPECT_TRUE(environment_.user.boxes().empty());
}

}  // namespace
}  // namespace kesp
