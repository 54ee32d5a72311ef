// Unit tests of the port switch: its settings, its sequences on a serial transport's line, and its test.
#include "serial/smart_switch.h"

#include <string>
#include <vector>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

TEST(CKespSmartSwitch3Test, Created_IsSixPortBoxWithNothingWantedOrConnected) {
  const CKespSmartSwitch3 box;
  EXPECT_EQ(box.Style(), ESmartSwitchStyle3::ssBB6port);
  EXPECT_EQ(box.NumPorts(), 6);
  EXPECT_EQ(box.SSPort(), L"");
  EXPECT_EQ(box.CurrentPort(), L"");
}

// Eight ports come before six: the values are not in the order of the port counts. A style without a model
// changes nothing.
TEST(CKespSmartSwitch3Test, StyleSet_NumPortsFollows) {
  struct Case {
    std::int32_t style;
    std::int16_t num_ports;
  };
  constexpr Case kCases[] = {{2, 6}, {0, 4}, {-1, 4}, {1, 8}, {3, 8}, {1000, 8}, {2, 6}};
  CKespSmartSwitch3 box;
  for (const Case& c : kCases) {
    box.SetStyle(static_cast<ESmartSwitchStyle3>(c.style));
    EXPECT_EQ(static_cast<std::int32_t>(box.Style()), c.style);
    EXPECT_EQ(box.NumPorts(), c.num_ports) << c.style;
  }
}

TEST(CKespSmartSwitch3Test, AnySSPort_IsStoredAndConnectsNothing) {
  CKespSmartSwitch3 box;
  for (const std::wstring& port :
       {std::wstring(L"A"), std::wstring(L"no such port"), std::wstring(L"a\0b", 3), std::wstring()}) {
    box.SetSSPort(port);
    box.SetStyle(ESmartSwitchStyle3::ssBB4port);
    EXPECT_EQ(box.SSPort(), port);
    EXPECT_EQ(box.CurrentPort(), L"");
  }
}

// The box on the serial transport's own line: four ports, of which the third is wanted.
class SmartSwitchOnPortTest : public SerialConversationFixture {
 protected:
  SmartSwitchOnPortTest() {
    port_.SetUseSmartSwitch(true);
    box_.SetStyle(ESmartSwitchStyle3::ssBB4port);
    box_.SetSSPort(L"3");
  }

  CKespSmartSwitch3& box_ = *port_.SmartSwitch();
};

TEST_F(SmartSwitchOnPortTest, Opening_WritesTheSequenceOfTheModelBehindItsRelease) {
  struct Case {
    ESmartSwitchStyle3 style;
    const wchar_t* port;
    const wchar_t* release;
    const wchar_t* selection;
  };
  constexpr Case kCases[] = {
      {ESmartSwitchStyle3::ssBB4port, L"3", L"<1B><02><04>", L"<1B><02>3<0D>"},
      {ESmartSwitchStyle3::ssBB4port, L"03", L"<1B><02><04>", L"<1B><02>03<0D>"},
      {ESmartSwitchStyle3::ssBB8port, L"3", L"<1B><02><02><04>", L"<1B><02>03<0D>"},
      {ESmartSwitchStyle3::ssBB8port, L"12", L"<1B><02><02><04>", L"<1B><02>12<0D>"},
      {ESmartSwitchStyle3::ssBB6port, L"A", L"<1B><02><02><04>", L"<1B><02>0A<0D>"},
      {ESmartSwitchStyle3::ssBB6port, L"ABC", L"<1B><02><02><04>", L"<1B><02>ABC<0D>"},
  };
  for (const Case& c : kCases) {
    box_.SetStyle(c.style);
    box_.SetSSPort(c.port);
    record_.clear();
    port_.OpenPort();
    EXPECT_EQ(Outputs(), (Lines{c.release, c.selection}));
    EXPECT_EQ(box_.CurrentPort(), c.port);
    // What is connected already is not selected again, and what is wanted then waits for the next opening.
    record_.clear();
    port_.OpenPort();
    EXPECT_EQ(Outputs(), Lines{});
    box_.SetSSPort(L"other");
    EXPECT_EQ(box_.CurrentPort(), c.port);
  }
}

TEST_F(SmartSwitchOnPortTest, Logged_EachSequenceBetweenTheClearings) {
  StartLog();
  port_.OpenPort();
  EXPECT_EQ(Lines(record_.begin() + 3, record_.end()),
            (Lines{L"Log Clearing buffers...", L"ClearOut", L"ClearIn", L"Output <1B><02><04>",
                   L"Log Closing SmartSwitch port (\x1B\x02\x04)", L"Log Clearing buffers...", L"ClearOut",
                   L"ClearIn", L"Output <1B><02>3<0D>", L"Log Selecting SmartSwitch port 3 (\x1B\x02\x33\r)",
                   L"Log Clearing buffers...", L"ClearOut", L"ClearIn"}));
}

TEST_F(SmartSwitchOnPortTest, NothingWanted_WhateverIsConnectedIsReleased) {
  Open();
  for (const wchar_t* connected : {L"3", L""}) {
    EXPECT_EQ(box_.CurrentPort(), connected);
    box_.SetSSPort(L"");
    ports_.line.on_output = [&](const std::string&, const std::wstring&) {
      EXPECT_EQ(box_.CurrentPort(), connected) << "until the sequence is written";
    };
    record_.clear();
    port_.OpenPort();
    EXPECT_EQ(Outputs(), (Lines{L"<1B><02><04>"}));
    EXPECT_EQ(box_.CurrentPort(), L"");
  }
}

// Four calls to open; clearing twice, writing and waiting to release, and the same to select, and clearing.
TEST_F(SmartSwitchOnPortTest, LineFails_OpeningFailsWithThePortOpenAndNothingSelected) {
  for (int nth = 5; nth <= 14; ++nth) {
    SCOPED_TRACE(nth);
    port_.ClosePort();
    ports_.line.FailCall(nth, 8012);
    EXPECT_EQ(RaisedBy([&] { port_.OpenPort(); }),
              (Raised{8012, L"CKespCOMPort3 - OpenPort() [commCOMControl]", L"The device is not open"}));
    EXPECT_TRUE(ports_.line.open);
    EXPECT_EQ(box_.CurrentPort(), L"");
  }
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
  Run([&] { return port_.OpenPort(); });
  EXPECT_EQ(raised_,
            (Raised{8012, L"CKespCOMPort3 - OpenPort() [commCOMControl]", L"The device is not open"}));
  // Three characters of ten bits take 3 ms, an adapter 2; the reading that sees it late is itself one.
  EXPECT_EQ(lasted_, 1000 + 5 + 1);
  EXPECT_EQ(box_.CurrentPort(), L"");
}

// 104 characters take seven seconds.
TEST_F(SmartSwitchOnPortTest, LowRate_LongSequenceHasItsTime) {
  ports_.line.ms_per_character = 67;
  port_.SetBaudRate(EKespBaudRate3::br150);
  box_.SetSSPort(std::wstring(100, L'x'));
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
  EXPECT_EQ(LogLines().back(), L"Closed COM port 1");
  EXPECT_EQ(box_.CurrentPort(), L"");
}

// Whether or not the box is in use otherwise.
TEST_F(SmartSwitchOnPortTest, Test_SelectsEveryPortInTurnTwoHundredMillisecondsApart) {
  struct Case {
    ESmartSwitchStyle3 style;
    const wchar_t* letters;
    const wchar_t* release;
    const wchar_t* selection;
  };
  const Case cases[] = {
      {ESmartSwitchStyle3::ssBB4port, L"ABCD", L"<1B><02><04>", L"<1B><02>"},
      {ESmartSwitchStyle3::ssBB6port, L"ABCDEF", L"<1B><02><02><04>", L"<1B><02>0"},
      {ESmartSwitchStyle3::ssBB8port, L"ABCDEFGH", L"<1B><02><02><04>", L"<1B><02>0"},
  };
  for (const Case& c : cases) {
    for (const bool in_use : {true, false}) {
      port_.SetUseSmartSwitch(in_use);
      box_.SetStyle(c.style);
      box_.SetSSPort(L"");
      record_.clear();
      Lines expected;
      if (in_use) expected.push_back(c.release);  // opening, with nothing wanted
      for (const wchar_t letter : std::wstring(c.letters)) {
        expected.insert(expected.end(), {c.release, c.selection + std::wstring(1, letter) + L"<0D>"});
      }
      if (in_use) expected.push_back(c.release);  // closing
      std::int32_t selected = 0;
      ports_.line.on_output = [&](const std::string& written, const std::wstring&) {
        EXPECT_EQ(environment_.user.pointer(), MousePointer::kBusy);
        if (written.back() != '\r') return;
        // The delay reads the clock 201 times.
        EXPECT_TRUE(selected == 0 || Now() - selected == 201);
        selected = Now();
      };
      port_.TestSmartSwitch();
      EXPECT_EQ(Outputs(), expected);
      EXPECT_EQ(box_.SSPort(), std::wstring(1, std::wstring(c.letters).back()));
      EXPECT_FALSE(ports_.line.open);
      EXPECT_EQ(environment_.user.pointer(), MousePointer::kDefault);
    }
  }
  EXPECT_EQ(environment_.pump.count(), 2 * 200 * (4 + 6 + 8));
  EXPECT_TRUE(environment_.user.boxes().empty());
}

TEST_F(SmartSwitchOnPortTest, TestFails_IsShownAndEndsAtOnceWithPortOpenAndPointerBusy) {
  // Opening, the release and selection of 3, those of A, B's release.
  ports_.line.FailCall(4 + 4 + 5 + 9 + 3, 8012);
  port_.TestSmartSwitch();
  ExpectBox(L"attempting to test SmartSwitch", L"8012 - The device is not open\r\n(commCOMControl)");
  EXPECT_TRUE(ports_.line.open);
  EXPECT_EQ(environment_.user.pointer(), MousePointer::kBusy);
  EXPECT_EQ(box_.SSPort(), L"B");
  ports_.line.open_failures = {8005};
  port_.TestSmartSwitch();
  ExpectBox(L"attempting to test SmartSwitch",
            L"8005 - Port already open\r\n(CKespCOMPort3 - OpenPort() [commCOMControl])", 2);
  EXPECT_EQ(box_.SSPort(), L"B");
}

}  // namespace
}  // namespace kesp
