// Unit tests of the port switch on the serial transport's line, and of the test of its ports.
#include <cstdint>
#include <string>
#include <vector>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

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

TEST_F(SmartSwitchOnPortTest, SequenceNeverLeaves_FailsASecondBehindItsTimeAndNothingCountsAsSelected) {
  ports_.line.drain.assign(100000, 5);
  const std::int32_t start = Now();
  EXPECT_EQ(RaisedBy([&] { port_.OpenPort(); }),
            (Raised{8012, L"CKespCOMPort3 - OpenPort() [commCOMControl]", L"The device is not open"}));
  // Three characters of ten bits take 3 ms, an adapter 2; the last readings are themselves milliseconds.
  EXPECT_EQ(Now() - start, 1000 + 5 + 2);
  EXPECT_EQ(port_.SmartSwitch()->CurrentPort(), L"");
}

// 104 characters take seven seconds.
TEST_F(SmartSwitchOnPortTest, LowRate_LongSequenceHasItsTime) {
  ports_.line.ms_per_character = 67;
  port_.SetBaudRate(EKespBaudRate3::br150);
  port_.SmartSwitch()->SetSSPort(std::wstring(100, L'x'));
  EXPECT_TRUE(port_.OpenPort());
  EXPECT_EQ(ports_.line.left, "\x1B\x02\x04\x1B\x02" + std::string(100, 'x') + "\r");
  port_.ClosePort();
  EXPECT_TRUE(ports_.line.left.ends_with("\r\x1B\x02\x04"));
}

TEST_F(SmartSwitchOnPortTest, ReleaseNeverLeaves_ClosingGoesOnAndIsLogged) {
  Open();
  StartLog();
  ports_.line.drain.assign(100000, 5);
  port_.ClosePort();
  EXPECT_FALSE(ports_.line.open);
  EXPECT_EQ(LogLines(), (Lines{L"Clearing buffers...", L"Closing SmartSwitch port (\x1B\x02\x04)",
                               L"Closing COM port 1", L"Closed COM port 1"}));
  EXPECT_EQ(port_.SmartSwitch()->CurrentPort(), L"");
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
    // The delay reads the clock 201 times.
    for (std::size_t i = 1; i < times.size(); ++i) EXPECT_EQ(times[i] - times[i - 1], 201);
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
