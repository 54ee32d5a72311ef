// Unit tests of the port switch: its settings, its sequences, and the test of its ports.
#include "serial/smart_switch.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

TEST(CKespSmartSwitch3, Created_IsSixPortBoxWithNothingWantedOrConnected) {
  const CKespSmartSwitch3 box;
  EXPECT_EQ(box.Style(), ESmartSwitchStyle3::ssBB6port);
  EXPECT_EQ(box.NumPorts(), 6);
  EXPECT_EQ(box.SSPort(), L"");
  EXPECT_EQ(box.CurrentPort(), L"");
}

TEST(CKespSmartSwitch3, StyleSet_NumPortsFollows) {
  struct Case {
    std::int32_t style;
    std::int16_t num_ports;
  };
  // Eight ports come before six: the values are not in the order of the port counts.
  constexpr Case kCases[] = {{0, 4}, {1, 8}, {2, 6}, {0, 4}};
  CKespSmartSwitch3 box;
  for (const Case& c : kCases) {
    box.SetStyle(static_cast<ESmartSwitchStyle3>(c.style));
    EXPECT_EQ(static_cast<std::int32_t>(box.Style()), c.style);
    EXPECT_EQ(box.NumPorts(), c.num_ports) << c.style;
  }
}

TEST(CKespSmartSwitch3, StyleWithoutModel_IsStoredAndNumPortsStays) {
  for (const std::int32_t style : {-1, 3, 1000}) {
    CKespSmartSwitch3 box;
    box.SetStyle(ESmartSwitchStyle3::ssBB8port);
    box.SetStyle(static_cast<ESmartSwitchStyle3>(style));
    EXPECT_EQ(static_cast<std::int32_t>(box.Style()), style);
    EXPECT_EQ(box.NumPorts(), 8) << style;
  }
}

TEST(CKespSmartSwitch3, AnySSPort_IsStoredAndConnectsNothing) {
  CKespSmartSwitch3 box;
  for (const std::wstring& port : {std::wstring(L"A"), std::wstring(L"03"), std::wstring(L"no such port"),
                                   std::wstring(L"a\0b", 3), std::wstring()}) {
    box.SetSSPort(port);
    EXPECT_EQ(box.SSPort(), port);
    EXPECT_EQ(box.CurrentPort(), L"");
  }
}

TEST(CKespSmartSwitch3, StyleSet_KeepsSSPort) {
  CKespSmartSwitch3 box;
  box.SetSSPort(L"H");
  box.SetStyle(ESmartSwitchStyle3::ssBB4port);
  EXPECT_EQ(box.SSPort(), L"H");
}

// The line that a box sits on, as a list of what was done to it.
class SwitchLineFake final : public SwitchLine {
 public:
  void ClearLine() override { Do("clear"); }
  void WriteToLine(const std::string& bytes) override { Do("write " + SerialControlFake::Visible(bytes)); }
  void LogSwitch(const std::wstring& message) override {
    done.push_back("log " + SerialControlFake::Visible(SystemCodePage().ToBytes(message)));
  }

  std::vector<std::string> done;
  int fail_at = 0;  // which of the clearings and writings fails; 0 for none

 private:
  void Do(const std::string& what) {
    if (++calls_ == fail_at) throw SerialControlFailure(kSerialDeviceError);
    done.push_back(what);
  }

  int calls_ = 0;
};

using Steps = std::vector<std::string>;

TEST(CKespSmartSwitch3, Select_WritesTheSequenceOfTheModelBehindItsRelease) {
  struct Case {
    ESmartSwitchStyle3 style;
    const wchar_t* port;
    const char* release;
    const char* selection;
  };
  constexpr Case kCases[] = {
      {ESmartSwitchStyle3::ssBB4port, L"3", "<1B><02><04>", "<1B><02>3<0D>"},
      {ESmartSwitchStyle3::ssBB4port, L"03", "<1B><02><04>", "<1B><02>03<0D>"},
      {ESmartSwitchStyle3::ssBB8port, L"3", "<1B><02><02><04>", "<1B><02>03<0D>"},
      {ESmartSwitchStyle3::ssBB8port, L"12", "<1B><02><02><04>", "<1B><02>12<0D>"},
      {ESmartSwitchStyle3::ssBB6port, L"A", "<1B><02><02><04>", "<1B><02>0A<0D>"},
      {ESmartSwitchStyle3::ssBB6port, L"ABC", "<1B><02><02><04>", "<1B><02>ABC<0D>"},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.selection);
    CKespSmartSwitch3 box;
    box.SetStyle(c.style);
    box.SetSSPort(c.port);
    SwitchLineFake line;
    box.Select(line);
    const std::string name = SystemCodePage().ToBytes(c.port);
    const std::string release = c.release;
    const std::string selection = c.selection;
    EXPECT_EQ(line.done, (Steps{"clear", "write " + release, "log Closing SmartSwitch port (" + release + ")",
                                "clear", "write " + selection,
                                "log Selecting SmartSwitch port " + name + " (" + selection + ")", "clear"}));
    EXPECT_EQ(box.CurrentPort(), c.port);
  }
}

TEST(CKespSmartSwitch3, Select_ConnectedAlready_DoesNothing) {
  CKespSmartSwitch3 box;
  box.SetSSPort(L"B");
  SwitchLineFake line;
  box.Select(line);
  line.done.clear();
  box.Select(line);
  EXPECT_EQ(line.done, Steps{});
  EXPECT_EQ(box.CurrentPort(), L"B");
}

TEST(CKespSmartSwitch3, Select_NothingWanted_ReleasesWhateverIsConnected) {
  CKespSmartSwitch3 box;
  SwitchLineFake line;
  const Steps release{"clear", "write <1B><02><02><04>", "log Closing SmartSwitch port (<1B><02><02><04>)"};
  box.Select(line);  // nothing wanted and nothing connected
  EXPECT_EQ(line.done, release);
  box.SetSSPort(L"B");
  box.Select(line);
  line.done.clear();
  box.SetSSPort(L"");
  box.Select(line);
  EXPECT_EQ(line.done, release);
  EXPECT_EQ(box.CurrentPort(), L"");
}

TEST(CKespSmartSwitch3, SSPortChanged_CurrentPortStaysUntilSelected) {
  CKespSmartSwitch3 box;
  SwitchLineFake line;
  box.SetSSPort(L"B");
  box.Select(line);
  box.SetSSPort(L"C");
  EXPECT_EQ(box.CurrentPort(), L"B");
  line.done.clear();
  box.Select(line);
  EXPECT_EQ(box.CurrentPort(), L"C");
  EXPECT_EQ(line.done[1], "write <1B><02><02><04>");
  EXPECT_EQ(line.done[4], "write <1B><02>0C<0D>");
}

TEST(CKespSmartSwitch3, Release_Always_EmptiesCurrentPort) {
  CKespSmartSwitch3 box;
  SwitchLineFake line;
  box.SetSSPort(L"B");
  box.Select(line);
  line.done.clear();
  box.Release(line);
  EXPECT_EQ(box.CurrentPort(), L"");
  EXPECT_EQ(box.SSPort(), L"B");
  box.Release(line);
  EXPECT_EQ(line.done.size(), 6u);
}

TEST(CKespSmartSwitch3, LineFails_IsRaisedAndNothingCountsAsConnected) {
  // Clearing and writing to release, clearing, writing and clearing to select.
  for (int nth = 1; nth <= 5; ++nth) {
    SCOPED_TRACE(nth);
    CKespSmartSwitch3 box;
    SwitchLineFake good;
    box.SetSSPort(L"A");
    box.Select(good);
    box.SetSSPort(L"B");
    SwitchLineFake line;
    line.fail_at = nth;
    EXPECT_EQ(RaisedBy([&] { box.Select(line); }).number, kSerialDeviceError);
    EXPECT_EQ(box.CurrentPort(), L"");
  }
}

// The box on the serial transport's own line.
class SmartSwitchOnPortTest : public SerialConversationTest {
 protected:
  SmartSwitchOnPortTest() {
    port_.SetUseSmartSwitch(true);
    port_.SmartSwitch()->SetStyle(ESmartSwitchStyle3::ssBB4port);
    port_.SmartSwitch()->SetSSPort(L"3");
  }
};

TEST_F(SmartSwitchOnPortTest, OpenedTwice_SelectionIsWrittenOnce) {
  port_.OpenPort();
  EXPECT_EQ(Outputs(), (Lines{L"<1B><02><04>", L"<1B><02>3<0D>"}));
  record_.clear();
  port_.OpenPort();
  EXPECT_EQ(Outputs(), Lines{});
  EXPECT_EQ(port_.SmartSwitch()->CurrentPort(), L"3");
}

TEST_F(SmartSwitchOnPortTest, SSPortChanged_OpeningReleasesAndSelects) {
  Open();
  port_.SmartSwitch()->SetSSPort(L"4");
  port_.OpenPort();
  EXPECT_EQ(Outputs(), (Lines{L"<1B><02><04>", L"<1B><02>4<0D>"}));
}

TEST_F(SmartSwitchOnPortTest, ClosedAndOpened_SelectsAnew) {
  Open();
  port_.ClosePort();
  EXPECT_EQ(Outputs(), (Lines{L"<1B><02><04>"}));
  Open();
  EXPECT_EQ(port_.SmartSwitch()->CurrentPort(), L"3");
}

TEST_F(SmartSwitchOnPortTest, Logged_EachSequenceBetweenTheClearings) {
  StartLog();
  port_.OpenPort();
  EXPECT_EQ(LogLines(), (Lines{L"Opening COM port 1 with settings 9600,N,8,1", L"Clearing buffers...",
                               L"Closing SmartSwitch port (\x1B\x02\x04)", L"Clearing buffers...",
                               L"Selecting SmartSwitch port 3 (\x1B\x02\x33\r)", L"Clearing buffers..."}));
}

TEST_F(SmartSwitchOnPortTest, BoxFails_OpeningFailsAndPortStaysOpen) {
  ports_.line.FailCall(7, 8012);  // four calls to open, two to clear, and the release
  EXPECT_EQ(RaisedBy([&] { port_.OpenPort(); }),
            (Raised{8012, L"CKespCOMPort3 - OpenPort() [commCOMControl]", L"The device is not open"}));
  EXPECT_TRUE(ports_.line.open);
}

// Clearing the buffers would take back what has yet to leave.
TEST_F(SmartSwitchOnPortTest, Sequence_IsDrainedBeforeTheBuffersAreClearedAgain) {
  ports_.line.drain = {3, 2, 1};
  int looks = 0;
  ports_.line.on_poll = [&] { ++looks; };
  port_.OpenPort();
  // Twice four looks at the output, and three clearings of the input.
  EXPECT_EQ(looks, 4 + 4 + 3);
  EXPECT_EQ(environment_.pump.count(), 0);
}

TEST_F(SmartSwitchOnPortTest, SequenceNeverLeaves_IsGivenUpAfterASecond) {
  ports_.line.drain.assign(100000, 5);
  const std::int32_t start = Now();
  EXPECT_TRUE(port_.OpenPort());
  EXPECT_EQ(Now() - start, 2 * 1002);  // two sequences; the reading behind the second is itself a millisecond
}

TEST_F(SmartSwitchOnPortTest, Test_SelectsEveryPortInTurnTwoHundredMillisecondsApart) {
  struct Case {
    ESmartSwitchStyle3 style;
    std::wstring letters;
  };
  const Case cases[] = {{ESmartSwitchStyle3::ssBB4port, L"ABCD"},
                        {ESmartSwitchStyle3::ssBB6port, L"ABCDEF"},
                        {ESmartSwitchStyle3::ssBB8port, L"ABCDEFGH"}};
  for (const Case& c : cases) {
    port_.SmartSwitch()->SetStyle(c.style);
    port_.SmartSwitch()->SetSSPort(L"");
    record_.clear();
    std::vector<std::int32_t> times;
    ports_.line.on_output = [&](const std::string& written, const std::wstring&) {
      if (written.back() == '\r') times.push_back(Now());
      EXPECT_EQ(environment_.user.pointer(), MousePointer::kBusy);
    };
    port_.TestSmartSwitch();
    const bool padded = c.style != ESmartSwitchStyle3::ssBB4port;
    const std::wstring release = padded ? L"<1B><02><02><04>" : L"<1B><02><04>";
    Lines expected{release};  // opening, with nothing wanted
    for (const wchar_t letter : c.letters) {
      expected.insert(expected.end(),
                      {release, (padded ? L"<1B><02>0" : L"<1B><02>") + std::wstring(1, letter) + L"<0D>"});
    }
    expected.push_back(release);  // closing
    EXPECT_EQ(Outputs(), expected);
    ASSERT_EQ(times.size(), c.letters.size());
    // A reading of the clock after each sequence that is written, and 201 of the delay.
    for (std::size_t i = 1; i < times.size(); ++i) EXPECT_EQ(times[i] - times[i - 1], 201 + 2);
    EXPECT_EQ(port_.SmartSwitch()->SSPort(), std::wstring(1, c.letters.back()));
    EXPECT_EQ(port_.SmartSwitch()->CurrentPort(), L"");
    EXPECT_FALSE(ports_.line.open);
    EXPECT_EQ(environment_.user.pointer(), MousePointer::kDefault);
  }
  EXPECT_EQ(environment_.pump.count(), 200 * (4 + 6 + 8));
  EXPECT_TRUE(environment_.user.boxes().empty());
}

TEST_F(SmartSwitchOnPortTest, Test_BoxNotInUse_IsSteppedThroughAllTheSame) {
  port_.SetUseSmartSwitch(false);
  port_.TestSmartSwitch();
  EXPECT_EQ(Outputs().size(), 8u);
  EXPECT_FALSE(ports_.line.open);
}

TEST_F(SmartSwitchOnPortTest, Test_Failure_IsShownAndEndsAtOnceWithPortOpenAndPointerBusy) {
  ports_.line.FailCall(4 + 4 + 5 + 9 + 3,
                       8012);  // opening, the release and selection of 3, those of A, B's release
  port_.TestSmartSwitch();
  ASSERT_EQ(environment_.user.boxes().size(), 1u);
  EXPECT_EQ(
      environment_.user.boxes()[0].text,
      L"An error occurred while attempting to test SmartSwitch.\r\nError: 8012 - The device is not open\r\n"
      L"(commCOMControl)");
  EXPECT_EQ(environment_.user.boxes()[0].title, L"Kesp Communications Error");
  EXPECT_TRUE(ports_.line.open);
  EXPECT_EQ(environment_.user.pointer(), MousePointer::kBusy);
  EXPECT_EQ(port_.SmartSwitch()->SSPort(), L"B");
}

TEST_F(SmartSwitchOnPortTest, Test_CannotOpen_IsShownAndSSPortStays) {
  ports_.line.open_failures = {8005};
  port_.TestSmartSwitch();
  ASSERT_EQ(environment_.user.boxes().size(), 1u);
  EXPECT_EQ(environment_.user.boxes()[0].text,
            L"An error occurred while attempting to test SmartSwitch.\r\nError: 8005 - Port already open\r\n"
            L"(CKespCOMPort3 - OpenPort() [commCOMControl])");
  EXPECT_EQ(port_.SmartSwitch()->SSPort(), L"3");
}

}  // namespace
}  // namespace kesp
