// Unit tests of the serial transport's port: opening, closing, and the infrared adapter.
// adapter.
#include <string>
#include <vector>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

class CKespCOMPort3OpeningTest : public SerialConversationTest {
 protected:
  // The tick counts at which the port's calls were recorded, counted from the present.
  void RecordTimes() {
    start_ = Now();
    ports_.line.record = [this](const std::string& call) {
      record_.push_back(SystemCodePage().FromBytes(call));
      times_.push_back(Now() - start_);
    };
  }

  std::int32_t start_ = 0;
  std::vector<std::int32_t> times_;
};

TEST_F(CKespCOMPort3OpeningTest, OpenPort_ClosedPort_IsOpenedWithTheSettings) {
  port_.SetPort(3);
  EXPECT_TRUE(port_.OpenPort());
  EXPECT_TRUE(ports_.line.open);
  EXPECT_EQ(record_, (Lines{L"Handshaking 0", L"Open COM3 9600,N,8,1"}));
  EXPECT_EQ(environment_.pump.count(), 0);
}

TEST_F(CKespCOMPort3OpeningTest, OpenPort_OpenPort_IsReopenedWithTheChangedSettingsAndLoggedAgain) {
  StartLog();
  port_.OpenPort();
  port_.SetPort(256);
  port_.SetBaudRate(Rate(0));
  port_.SetParity(EKespParity3::PARITY_MARK);
  port_.SetDataBits(EKespDataBits3::DATA_5BITS);
  port_.SetStopBits(EKespStopBits3::STOP_1_5BITS);
  EXPECT_TRUE(port_.OpenPort());
  EXPECT_EQ(record_,
            (Lines{L"Handshaking 0", L"Log Opening COM port 1 with settings 9600,N,8,1",
                   L"Open COM1 9600,N,8,1", L"Close", L"Handshaking 0",
                   L"Log Opening COM port 256 with settings 150,M,5,1.5", L"Open COM256 150,M,5,1.5"}));
}

TEST_F(CKespCOMPort3OpeningTest, SettingsChanged_OpenPortIsNotTouched) {
  Open();
  port_.SetPort(9);
  port_.SetBaudRate(Rate(7));
  port_.SetControllerStyle(EKespControllerStyle3::CS_PRECIDIA);
  port_.SetUseSmartSwitch(true);
  port_.SetUseIRDongle(true);
  EXPECT_EQ(record_, Lines{});
  EXPECT_TRUE(ports_.line.open);
}

TEST_F(CKespCOMPort3OpeningTest, OpenPort_HandshakingFollowsTheStyle) {
  struct Case {
    std::int32_t style;
    Lines calls;
  };
  const Case cases[] = {{0, {L"Handshaking 0", L"Open COM1 9600,N,8,1"}},
                        {1, {L"Handshaking 0", L"Open COM1 9600,E,7,1"}},
                        {2, {L"Handshaking 1", L"Open COM1 9600,N,8,1"}},
                        {3, {L"Open COM1 9600,N,8,1"}},
                        {4, {L"Open COM1 9600,N,8,1"}},
                        {-1, {L"Open COM1 9600,N,8,1"}}};
  for (const Case& c : cases) {
    port_.SetControllerStyle(As<EKespControllerStyle3>(c.style));
    port_.OpenPort();
    EXPECT_EQ(record_, c.calls) << c.style;
    port_.ClosePort();
    record_.clear();
  }
}

TEST_F(CKespCOMPort3OpeningTest, OpenPort_RateNotSet_IsRefusedByTheControl) {
  CKespCOMPort3 fresh(environment_.environment, ports_);
  EXPECT_EQ(RaisedBy([&] { fresh.OpenPort(); }),
            (Raised{380, L"CKespCOMPort3 - OpenPort() [commCOMControl]", L"Invalid property value"}));
  EXPECT_FALSE(ports_.line.open);
}

TEST_F(CKespCOMPort3OpeningTest, OpenPort_ControlFails_IsRaisedWithItsOwnNumberAndWrappedSource) {
  // Setting the port's number, its settings and its handshaking, and opening it; closed in between.
  for (int nth = 1; nth <= 4; ++nth) {
    SCOPED_TRACE(nth);
    ports_.line.FailCall(nth, 8005);
    EXPECT_EQ(RaisedBy([&] { port_.OpenPort(); }),
              (Raised{8005, L"CKespCOMPort3 - OpenPort() [commCOMControl]", L"Port already open"}));
    EXPECT_FALSE(ports_.line.open);
  }
  EXPECT_TRUE(port_.OpenPort());
}

TEST_F(CKespCOMPort3OpeningTest, OpenPort_CannotReopen_OpeningWasLoggedAndFailureIsNot) {
  StartLog();
  port_.OpenPort();
  record_.clear();
  ports_.line.open_failures = {8002};
  EXPECT_EQ(RaisedBy([&] { port_.OpenPort(); }),
            (Raised{8002, L"CKespCOMPort3 - OpenPort() [commCOMControl]", L"Invalid port number"}));
  EXPECT_FALSE(ports_.line.open);
  EXPECT_EQ(record_, (Lines{L"Close", L"Handshaking 0", L"Log Opening COM port 1 with settings 9600,N,8,1"}));
}

TEST_F(CKespCOMPort3OpeningTest, OpenPort_Dongle_PulseCountIsTheAdaptersCodeForTheRate) {
  struct Case {
    std::int32_t rate;
    int pulses;
  };
  constexpr Case kCases[] = {{0, 0}, {1, 0}, {2, 0}, {3, 0},  {4, 0},  {5, 0},  {6, 0},
                             {7, 1}, {8, 4}, {9, 2}, {10, 3}, {11, 0}, {12, 0}, {13, 0}};
  port_.SetUseIRDongle(true);
  for (const Case& c : kCases) {
    port_.SetBaudRate(Rate(c.rate));
    port_.OpenPort();
    Lines expected{L"DTR 0", L"DTR 1"};
    for (int pulse = 0; pulse < c.pulses; ++pulse) expected.insert(expected.end(), {L"RTS 0", L"RTS 1"});
    ASSERT_GE(record_.size(), 2u);
    EXPECT_EQ(Lines(record_.begin() + 2, record_.end()), expected) << c.rate;
    port_.ClosePort();
    record_.clear();
  }
}

TEST_F(CKespCOMPort3OpeningTest, OpenPort_Dongle_EachStateOfALineLastsTenMillisecondsAndPumps) {
  port_.SetUseIRDongle(true);
  port_.SetBaudRate(EKespBaudRate3::br19200);
  RecordTimes();
  port_.OpenPort();
  EXPECT_EQ(record_,
            (Lines{L"Handshaking 0", L"Open COM1 19200,N,8,1", L"DTR 0", L"DTR 1", L"RTS 0", L"RTS 1"}));
  // A delay reads the clock once at its start and then after each pumping; 11 readings see 10 ms go by.
  EXPECT_EQ(times_, (std::vector<std::int32_t>{0, 0, 0, 11, 22, 33}));
  EXPECT_EQ(Now() - start_, 44);
  EXPECT_EQ(environment_.pump.count(), 40);
}

TEST_F(CKespCOMPort3OpeningTest, OpenPort_ClockAtItsEnd_DongleFailsWithOverflowAndPortStaysOpen) {
  port_.SetUseIRDongle(true);
  environment_.clock.SetTickCount(kHighest32 - 5);
  EXPECT_EQ(RaisedBy([&] { port_.OpenPort(); }),
            (Raised{6, L"CKespCOMPort3 - OpenPort() [KespCommObj]", L"Overflow"}));
  EXPECT_TRUE(ports_.line.open);
}

TEST_F(CKespCOMPort3OpeningTest, OpenPort_DongleLineFails_IsRaisedAndPortStaysOpen) {
  port_.SetUseIRDongle(true);
  ports_.line.FailCall(5, 8012);
  EXPECT_EQ(RaisedBy([&] { port_.OpenPort(); }),
            (Raised{8012, L"CKespCOMPort3 - OpenPort() [commCOMControl]", L"The device is not open"}));
  EXPECT_TRUE(ports_.line.open);
}

// The lines feed adapters; the control keeps them for the next opening.
TEST_F(CKespCOMPort3OpeningTest, OpenPort_WakeUpFails_LinesAreUpAgain) {
  port_.SetUseIRDongle(true);
  environment_.clock.SetTickCount(kHighest32 - 5);
  EXPECT_EQ(RaisedBy([&] { port_.OpenPort(); }).number, 6);
  EXPECT_EQ(record_.back(), L"DTR 1");
}

TEST_F(CKespCOMPort3OpeningTest, OpenPort_SwitchAndDongle_SwitchComesFirst) {
  port_.SetUseSmartSwitch(true);
  port_.SetUseIRDongle(true);
  port_.SmartSwitch()->SetSSPort(L"3");
  port_.OpenPort();
  EXPECT_EQ(record_, (Lines{L"Handshaking 0", L"Open COM1 9600,N,8,1", L"ClearOut", L"ClearIn",
                            L"Output <1B><02><02><04>", L"ClearOut", L"ClearIn", L"Output <1B><02>03<0D>",
                            L"ClearOut", L"ClearIn", L"DTR 0", L"DTR 1"}));
}

TEST_F(CKespCOMPort3OpeningTest, ClosePort_OpenPort_IsClosedBetweenItsTwoLogLines) {
  port_.SetPort(12);
  Open();
  StartLog();
  port_.ClosePort();
  EXPECT_FALSE(ports_.line.open);
  EXPECT_EQ(record_, (Lines{L"Log Closing COM port 12", L"Close", L"Log Closed COM port 12"}));
}

TEST_F(CKespCOMPort3OpeningTest, ClosePort_ClosedPort_DoesAndLogsNothing) {
  StartLog();
  port_.SetUseSmartSwitch(true);
  port_.ClosePort();
  EXPECT_EQ(record_, Lines{});
  EXPECT_EQ(ports_.line.calls, 0);
}

TEST_F(CKespCOMPort3OpeningTest, ClosePort_Switch_IsReleasedWhileThePortIsOpen) {
  port_.SmartSwitch()->SetSSPort(L"3");
  port_.SetUseSmartSwitch(true);
  Open();
  EXPECT_EQ(port_.SmartSwitch()->CurrentPort(), L"3");
  StartLog();
  port_.ClosePort();
  EXPECT_EQ(record_, (Lines{L"Log Clearing buffers...", L"ClearOut", L"ClearIn", L"Output <1B><02><02><04>",
                            L"Log Closing SmartSwitch port (\x1B\x02\x02\x04)", L"Log Closing COM port 1",
                            L"Close", L"Log Closed COM port 1"}));
  EXPECT_EQ(port_.SmartSwitch()->CurrentPort(), L"");
}

TEST_F(CKespCOMPort3OpeningTest, ClosePort_ReleaseFails_IsLoggedAndRaisedAndPortIsClosed) {
  port_.SmartSwitch()->SetSSPort(L"3");
  port_.SetUseSmartSwitch(true);
  Open();
  StartLog();
  ports_.line.FailCall(3, 8012);  // clearing both buffers, then the sequence
  EXPECT_EQ(RaisedBy([&] { port_.ClosePort(); }),
            (Raised{8012, L"CKespCOMPort3 - ClosePort() [commCOMControl]", L"The device is not open"}));
  EXPECT_EQ(record_, (Lines{L"Log Clearing buffers...", L"ClearOut", L"ClearIn", L"Close",
                            L"Log ** ClosePort() error: 8012 - The device is not open [commCOMControl] **"}));
  EXPECT_FALSE(ports_.line.open);
  EXPECT_EQ(port_.SmartSwitch()->CurrentPort(), L"");
}

TEST_F(CKespCOMPort3OpeningTest, ClosePort_ReleaseFailsWithLogOff_WritesNoFile) {
  port_.SetUseSmartSwitch(true);
  Open();
  ports_.line.FailCall(1, 8012);
  EXPECT_EQ(RaisedBy([&] { port_.ClosePort(); }).number, 8012);
  EXPECT_TRUE(environment_.files.files().empty());
}

}  // namespace
}  // namespace kesp
