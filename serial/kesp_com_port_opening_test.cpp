// Unit tests of the serial transport's port: opening it, the infrared adapter, availability, and buffers.
#include <string>
#include <vector>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

class CKespCOMPort3OpeningTest : public SerialConversationFixture {
 protected:
  Raised RaisedByOpening() {
    return RaisedBy([&] { port_.OpenPort(); });
  }
  static Raised FailedOpening(std::int32_t number, const wchar_t* description) {
    return {number, L"CKespCOMPort3 - OpenPort() [commCOMControl]", description};
  }
};

TEST_F(CKespCOMPort3OpeningTest, OpenPort_IsLoggedAndAnOpenPortOpenedAnewWithTheSettingsOfNow) {
  port_.OpenPort();
  StartLog();
  port_.SetPort(256);
  port_.SetBaudRate(Rate(0));
  port_.SetParity(EKespParity3::PARITY_MARK);
  port_.SetDataBits(EKespDataBits3::DATA_5BITS);
  port_.SetStopBits(EKespStopBits3::STOP_1_5BITS);
  EXPECT_TRUE(port_.OpenPort());
  EXPECT_EQ(record_,
            (Lines{L"Handshaking 0", L"Open COM1 9600,N,8,1", L"Close", L"Handshaking 0",
                   L"Log Opening COM port 256 with settings 150,M,5,1.5", L"Open COM256 150,M,5,1.5"}));
  EXPECT_EQ(environment_.pump.count(), 0);
}

TEST_F(CKespCOMPort3OpeningTest, SettingsChanged_OpenPortIsNotTouched) {
  Open();
  port_.SetPort(9);
  port_.SetBaudRate(Rate(7));
  port_.SetControllerStyle(EKespControllerStyle3::CS_PRECIDIA);
  port_.SetUseSmartSwitch(true);
  port_.SetUseIRDongle(true);
  EXPECT_EQ(record_, Lines{});
}

TEST_F(CKespCOMPort3OpeningTest, Handshaking_FollowsTheStyle) {
  struct Case {
    std::int32_t style;
    Lines handshaking;
  };
  const Case cases[] = {
      {0, {L"Handshaking 0"}}, {1, {L"Handshaking 0"}}, {2, {L"Handshaking 1"}}, {3, {}}, {4, {}}, {-1, {}}};
  for (const Case& c : cases) {
    port_.SetControllerStyle(As<EKespControllerStyle3>(c.style));
    port_.OpenPort();
    EXPECT_EQ(Lines(record_.begin(), record_.end() - 1), c.handshaking) << c.style;
    port_.ClosePort();
    record_.clear();
  }
}

TEST_F(CKespCOMPort3OpeningTest, ControlFails_IsRaisedWithItsOwnNumberAndWrappedSource) {
  // Setting the port's number, its settings and its handshaking, and opening it; closed in between.
  for (int nth = 1; nth <= 4; ++nth) {
    SCOPED_TRACE(nth);
    ports_.line.FailCall(nth, 8005);
    EXPECT_EQ(RaisedByOpening(), FailedOpening(8005, L"Port already open"));
    EXPECT_FALSE(ports_.line.open);
  }
  CKespCOMPort3 without_rate(environment_.environment, ports_);
  EXPECT_EQ(RaisedBy([&] { without_rate.OpenPort(); }), FailedOpening(380, L"Invalid property value"));
}

TEST_F(CKespCOMPort3OpeningTest, CannotReopen_OpeningWasLoggedAndFailureIsNot) {
  Open();
  StartLog();
  ports_.line.open_failures = {8002};
  EXPECT_EQ(RaisedByOpening(), FailedOpening(8002, L"Invalid port number"));
  EXPECT_FALSE(ports_.line.open);
  EXPECT_EQ(record_, (Lines{L"Close", L"Handshaking 0", L"Log Opening COM port 1 with settings 9600,N,8,1"}));
}

// A delay reads the clock once at its start and then after each pumping; 11 readings see 10 ms go by.
TEST_F(CKespCOMPort3OpeningTest, Dongle_PulsesAreTheAdaptersCodeForTheRateTenMillisecondsEach) {
  constexpr int kPulses[] = {0, 0, 0, 0, 0, 0, 0, 1, 4, 2, 3, 0, 0, 0};
  std::vector<std::int32_t> times;
  ports_.line.record = [&](const std::string& call) {
    if (call.starts_with("Open")) record_.clear();
    record_.push_back(SystemCodePage().FromBytes(call));
    times.push_back(Now());
  };
  port_.SetUseIRDongle(true);
  for (std::int32_t rate = 0; rate <= 13; ++rate) {
    SCOPED_TRACE(rate);
    port_.SetBaudRate(Rate(rate));
    const int pumps = environment_.pump.count();
    port_.OpenPort();
    times.push_back(Now());
    Lines expected{L"Open COM1 " + port_.GetSettings(), L"DTR 0", L"DTR 1"};
    for (int pulse = 0; pulse < kPulses[rate]; ++pulse) {
      expected.insert(expected.end(), {L"RTS 0", L"RTS 1"});
    }
    EXPECT_EQ(record_, expected);
    for (std::size_t change = expected.size() - 1; change > 0; --change) {
      EXPECT_EQ(*(times.end() - static_cast<std::ptrdiff_t>(change)) -
                    *(times.end() - static_cast<std::ptrdiff_t>(change) - 1),
                11);
    }
    EXPECT_EQ(environment_.pump.count() - pumps, 20 + 20 * kPulses[rate]);
  }
}

// The lines feed adapters; the control keeps them for the next opening.
TEST_F(CKespCOMPort3OpeningTest, DongleFails_IsRaisedWithTheLinesUpAndThePortOpen) {
  port_.SetUseIRDongle(true);
  ports_.line.FailCall(5, 8012);
  EXPECT_EQ(RaisedByOpening(), FailedOpening(8012, L"The device is not open"));
  EXPECT_TRUE(ports_.line.open);
  environment_.clock.SetTickCount(kHighest32 - 5);
  EXPECT_EQ(RaisedByOpening(), (Raised{6, L"CKespCOMPort3 - OpenPort() [KespCommObj]", L"Overflow"}));
  EXPECT_TRUE(ports_.line.open);
  EXPECT_EQ(record_.back(), L"DTR 1");
}

TEST_F(CKespCOMPort3OpeningTest, SwitchAndDongle_SwitchComesFirst) {
  port_.SetUseSmartSwitch(true);
  port_.SetUseIRDongle(true);
  port_.SmartSwitch()->SetSSPort(L"3");
  port_.OpenPort();
  EXPECT_EQ(record_, (Lines{L"Handshaking 0", L"Open COM1 9600,N,8,1", L"ClearOut", L"ClearIn",
                            L"Output <1B><02><02><04>", L"ClearOut", L"ClearIn", L"Output <1B><02>03<0D>",
                            L"ClearOut", L"ClearIn", L"DTR 0", L"DTR 1"}));
}

TEST_F(CKespCOMPort3OpeningTest, Availability_FollowsTheCode) {
  struct Case {
    std::int32_t code;
    bool exists;
    bool available;
  };
  constexpr Case kCases[] = {{0, true, true}, {2, false, false}, {5, true, false},
                             {1, true, true}, {31, true, true},  {-1, true, true}};
  for (const Case& c : kCases) {
    ports_.code = c.code;
    EXPECT_EQ(port_.PortExists(7), c.exists) << c.code;
    EXPECT_EQ(port_.IsPortAvailable(kLowest16), c.available) << c.code;
  }
  EXPECT_EQ(ports_.asked.size(), 12u);
  EXPECT_EQ(ports_.asked[0], 7);
  EXPECT_EQ(ports_.asked[1], kLowest16);
  EXPECT_EQ(record_, Lines{});
}

TEST_F(CKespCOMPort3OpeningTest, AvailabilityCannotBeFoundOut_IsShownAndFalse) {
  const std::wstring error = L"51 - Internal error (the ports cannot be listed)\r\n(KespCommObj)";
  ports_.probing_fails = true;
  EXPECT_FALSE(port_.PortExists(12));
  ExpectBox(L"attempting to determine if COM12 exists", error);
  EXPECT_FALSE(port_.IsPortAvailable(13));
  ExpectBox(L"attempting to determine if COM13 is currently available", error, 2);
}

TEST_F(CKespCOMPort3OpeningTest, ClearBuffers_OutputBeforeInputBehindTheLogLine) {
  EXPECT_EQ(RaisedBy([&] { port_.ClearBuffers(); }),
            (Raised{8018, L"commCOMControl", L"Operation valid only when the port is open"}));
  Open();
  port_.ClearBuffers();
  StartLog();
  port_.ClearBuffers();
  EXPECT_EQ(record_, (Lines{L"ClearOut", L"ClearIn", L"Log Clearing buffers...", L"ClearOut", L"ClearIn"}));
}

TEST_F(CKespCOMPort3OpeningTest, Log_LineHasDateTickAndMessageAndGoesToTheNamedFile) {
  StartLog();
  port_.SetLogFilename(L"D:\\serial.log");
  Open();
  EXPECT_EQ(environment_.files.Content(L"D:\\serial.log"),
            "17/05/2024 12:34:56\t1000000\tOpening COM port 1 with settings 9600,N,8,1\r\n");
  EXPECT_EQ(environment_.files.files().size(), 1u);
}

}  // namespace
}  // namespace kesp
