// Unit tests of closing the serial transport's port, and of its object's end.
#include <memory>
#include <string>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

class CKespCOMPort3ClosingTest : public SerialConversationFixture {
 protected:
  // The switch has to be released at each closing.
  void OpenWithSwitch() {
    port_.SetUseSmartSwitch(true);
    port_.SmartSwitch()->SetSSPort(L"3");
    Open();
  }
};

TEST_F(CKespCOMPort3ClosingTest, OpenPort_IsClosedBetweenItsTwoLogLinesBehindTheRelease) {
  OpenWithSwitch();
  EXPECT_EQ(port_.SmartSwitch()->CurrentPort(), L"3");
  StartLog();
  port_.ClosePort();
  EXPECT_EQ(record_, (Lines{L"Log Clearing buffers...", L"ClearOut", L"ClearIn", L"Output <1B><02><02><04>",
                            L"Log Closing SmartSwitch port (\x1B\x02\x02\x04)", L"Log Closing COM port 1",
                            L"Close", L"Log Closed COM port 1"}));
  EXPECT_EQ(port_.SmartSwitch()->CurrentPort(), L"");
}

TEST_F(CKespCOMPort3ClosingTest, ClosedPort_DoesAndLogsNothing) {
  StartLog();
  port_.SetUseSmartSwitch(true);
  port_.ClosePort();
  EXPECT_EQ(record_, Lines{});
  EXPECT_EQ(ports_.line.faults.calls(), 0);
}

TEST_F(CKespCOMPort3ClosingTest, ReleaseFails_IsLoggedAndRaisedAndPortIsClosed) {
  for (const bool logged : {false, true}) {
    OpenWithSwitch();
    port_.SetCreateLogFile(logged);
    ports_.line.FailCall(3, 8012);  // clearing both buffers, then the sequence
    EXPECT_EQ(RaisedBy([&] { port_.ClosePort(); }),
              (Raised{8012, L"CKespCOMPort3 - ClosePort() [commCOMControl]", L"The device is not open"}));
    EXPECT_FALSE(ports_.line.open);
    EXPECT_EQ(port_.SmartSwitch()->CurrentPort(), L"");
    EXPECT_EQ(environment_.files.files().empty(), !logged);
  }
  EXPECT_EQ(record_, (Lines{L"Log Clearing buffers...", L"ClearOut", L"ClearIn", L"Close",
                            L"Log ** ClosePort() error: 8012 - The device is not open [commCOMControl] **"}));
}

// 300 bit/s, and an adapter that takes all bytes at once and loses them when its port is closed.
class ClosingBehindAnAdapterTest : public SerialConversationFixture {
 protected:
  ClosingBehindAnAdapterTest() {
    port_.SetBaudRate(EKespBaudRate3::br300);
    Open();
    ports_.line.ms_per_character = 33;
    ports_.line.has_adapter = true;
  }

  std::int32_t TimeToClose() {
    const std::int32_t start = Now();
    port_.ClosePort();
    EXPECT_FALSE(ports_.line.open);
    return Now() - start;
  }
};

TEST_F(ClosingBehindAnAdapterTest, Command_HasTheTimeThatItNeeds) {
  port_.WriteLine(L"123456789");
  const std::int32_t milliseconds = TimeToClose();
  EXPECT_EQ(ports_.line.left, "123456789\r");
  EXPECT_GE(milliseconds, 333);
  EXPECT_LT(milliseconds, 350);
  EXPECT_EQ(environment_.pump.count(), 0);
}

TEST_F(ClosingBehindAnAdapterTest, TimeHasPassedSince_OnlyTheRestIsWaitedFor) {
  port_.WriteLine(L"123456789");
  environment_.clock.Advance(300);
  EXPECT_LT(TimeToClose(), 50);
  EXPECT_EQ(ports_.line.left, "123456789\r");
}

TEST_F(ClosingBehindAnAdapterTest, BehindAReply_ClosesAtOnceWithoutAnotherLook) {
  ports_.line.Answer("123456789\r", "1\r\n", 400);
  port_.WriteLine(L"123456789");
  std::wstring reply;
  port_.ReadLine(reply);
  // The clock says that the line is busy; the reply says that it is not.
  ports_.line.ms_per_character = 0;
  const int polls = ports_.line.polls;
  EXPECT_EQ(TimeToClose(), 0);
  EXPECT_EQ(ports_.line.polls, polls);
}

TEST_F(ClosingBehindAnAdapterTest, OpenedAnew_IsClosedBehindTheCommandToo) {
  port_.WriteLine(L"123456789");
  port_.OpenPort();
  EXPECT_EQ(ports_.line.left, "123456789\r");
}

TEST_F(ClosingBehindAnAdapterTest, Release_HasItsTimeToo) {
  port_.SetUseSmartSwitch(true);
  port_.ClosePort();
  EXPECT_EQ(ports_.line.left, "\x1B\x02\x02\x04");
}

TEST_F(ClosingBehindAnAdapterTest, LongCommand_ClosesAfterTenSeconds) {
  port_.WriteLine(std::wstring(2000, L'x'));
  const std::int32_t milliseconds = TimeToClose();
  EXPECT_GE(milliseconds, 10000);
  EXPECT_LT(milliseconds, 10010);
}

// Who closes a port that takes nothing does not want to wait.
TEST_F(ClosingBehindAnAdapterTest, DriverHoldsBytes_ClosesAtOnce) {
  ports_.line.drain = {5, 4, 3};
  events_.handlers[L"WriteUpdate"] = [&] { EXPECT_EQ(TimeToClose(), 0); };
  EXPECT_EQ(RaisedBy([&] { port_.WriteLine(L"t"); }).number, 8018);
}

// A handler of WriteUpdate ends a write to a line that is held up; what it has cleared is not waited for.
TEST_F(ClosingBehindAnAdapterTest, DriverGaveBytesBack_OnlyTheRestIsWaitedFor) {
  ports_.line.drain = {2000, 1990, 1990};
  int looks = 0;
  events_.handlers[L"WriteUpdate"] = [&] {
    if (++looks == 2) port_.ClearBuffers();
  };
  port_.WriteLine(std::wstring(1999, L'x'));
  EXPECT_LT(TimeToClose(), 350) << "ten characters";
}

TEST_F(ClosingBehindAnAdapterTest, PortIsGone_ClosesAtOnceAndWithoutAFailure) {
  port_.WriteLine(L"123456789");
  ports_.line.FailCall(1, 8012);
  EXPECT_EQ(TimeToClose(), 0);
}

// An object that the test lets go of.
class CKespCOMPort3EndTest : public SerialConversationFixture {
 protected:
  void Make() {
    object_ = std::make_unique<CKespCOMPort3>(environment_.environment, ports_, &events_);
    object_->SetMaxBaudRate(Rate(6));
    object_->SetBaudRate(Rate(6));
    object_->SetPort(256);
    environment_.settings.Put(kModemFile, L"COM256", L"InstrAddr", L"26");
  }

  std::unique_ptr<CKespCOMPort3> object_;
};

TEST_F(CKespCOMPort3EndTest, OpenPort_IsClosedThenTheModemsTargetForgottenThenTheControlReleased) {
  environment_.settings.Put(kModemFile, L"COM1", L"InstrAddr", L"5");
  Make();
  object_->OpenPort();
  record_.clear();
  ports_.line.record = [&](const std::string& call) {
    record_.push_back(SystemCodePage().FromBytes(call) + L" " + Remembered(L"COM256"));
  };
  object_.reset();
  EXPECT_EQ(record_, (Lines{L"Close 26", L"Destroyed -1"}));
  EXPECT_EQ(Remembered(L"COM1"), L"5");
}

TEST_F(CKespCOMPort3EndTest, AnyCallFails_PortIsClosedAndTheTargetForgotten) {
  for (int nth = 1; nth <= 4; ++nth) {
    SCOPED_TRACE(nth);
    Make();
    object_->SetUseSmartSwitch(true);
    object_->SmartSwitch()->SetSSPort(L"3");
    object_->OpenPort();
    ports_.line.FailCall(nth, 8012);
    object_.reset();
    EXPECT_FALSE(ports_.line.open);
    EXPECT_EQ(Remembered(L"COM256"), L"-1");
    EXPECT_TRUE(environment_.user.boxes().empty());
  }
}

TEST_F(CKespCOMPort3EndTest, SettingsFileFails_PortIsClosedAllTheSame) {
  Make();
  object_->OpenPort();
  environment_.settings.faults.Fail(1);
  object_.reset();
  EXPECT_FALSE(ports_.line.open);
  EXPECT_EQ(record_.back(), L"Destroyed");
}

TEST_F(CKespCOMPort3EndTest, NoTemporaryFolder_WritesNothing) {
  environment_.files.SetTemporaryFolder(L"");
  Make();
  const int calls = environment_.settings.faults.calls();
  object_.reset();
  EXPECT_EQ(environment_.settings.faults.calls(), calls);
}

}  // namespace
}  // namespace kesp
