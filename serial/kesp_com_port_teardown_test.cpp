// Unit tests of the serial transport's end.
#include <memory>
#include <string>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

constexpr wchar_t kModemFile[] = L"C:\\Temp\\RFModem.ini";

class CKespCOMPort3TeardownTest : public SerialConversationTest {
 protected:
  CKespCOMPort3TeardownTest() { Make(); }

  void Make() {
    object_ = std::make_unique<CKespCOMPort3>(environment_.environment, ports_, &events_);
    object_->SetMaxBaudRate(Rate(6));
    object_->SetBaudRate(Rate(6));
    record_.clear();
  }
  std::wstring Remembered(const std::wstring& section) const {
    return environment_.settings.Value(kModemFile, section, L"InstrAddr");
  }

  std::unique_ptr<CKespCOMPort3> object_;
};

TEST_F(CKespCOMPort3TeardownTest, OpenPort_IsClosedThenTheModemsTargetForgottenThenTheControlReleased) {
  object_->SetPort(3);
  object_->OpenPort();
  record_.clear();
  ports_.line.record = [&](const std::string& call) {
    record_.push_back(SystemCodePage().FromBytes(call) + L" " + Remembered(L"COM3"));
  };
  object_.reset();
  EXPECT_EQ(record_, (Lines{L"Close <none>", L"Destroyed -1"}));
}

TEST_F(CKespCOMPort3TeardownTest, Switch_IsReleasedFirst) {
  object_->SetCreateLogFile(true);
  object_->SetUseSmartSwitch(true);
  object_->SmartSwitch()->SetSSPort(L"3");
  object_->OpenPort();
  record_.clear();
  object_.reset();
  EXPECT_EQ(record_, (Lines{L"Log Clearing buffers...", L"ClearOut", L"ClearIn", L"Output <1B><02><02><04>",
                            L"Log Closing SmartSwitch port (\x1B\x02\x02\x04)", L"Log Closing COM port 1",
                            L"Close", L"Log Closed COM port 1", L"Destroyed"}));
}

TEST_F(CKespCOMPort3TeardownTest, ClosedPort_OnlyForgetsTheModemsTarget) {
  object_->SetPort(256);
  environment_.settings.Put(kModemFile, L"COM256", L"InstrAddr", L"26");
  environment_.settings.Put(kModemFile, L"COM1", L"InstrAddr", L"5");
  object_.reset();
  EXPECT_EQ(record_, (Lines{L"Destroyed"}));
  EXPECT_EQ(Remembered(L"COM256"), L"-1");
  EXPECT_EQ(Remembered(L"COM1"), L"5");
}

TEST_F(CKespCOMPort3TeardownTest, NextObject_PointsTheModemAnew) {
  const auto point = [&] {
    object_->SetUseRFModem(true);
    object_->OpenPort();
    record_.clear();
    EXPECT_TRUE(object_->RFWriteModemInstrAddress(26));
  };
  for (const char* command : {"+++", "ATDH0\r", "ATDL1A\r", "ATWR\r", "ATCN\r"}) {
    ports_.line.Answer(command, "OK\r");
  }
  point();
  EXPECT_EQ(Outputs().size(), 5u);
  object_.reset();
  Make();
  point();
  EXPECT_EQ(Outputs().size(), 5u);
}

TEST_F(CKespCOMPort3TeardownTest, AnyCallFails_PortIsClosedAndTheTargetForgotten) {
  for (int nth = 1; nth <= 4; ++nth) {
    SCOPED_TRACE(nth);
    Make();
    object_->SetUseSmartSwitch(true);
    object_->SmartSwitch()->SetSSPort(L"3");
    object_->OpenPort();
    environment_.settings.Put(kModemFile, L"COM1", L"InstrAddr", L"26");
    ports_.line.FailCall(nth, 8012);
    object_.reset();
    EXPECT_FALSE(ports_.line.open);
    EXPECT_EQ(Remembered(L"COM1"), L"-1");
    EXPECT_TRUE(environment_.user.boxes().empty());
  }
}

TEST_F(CKespCOMPort3TeardownTest, SettingsFileFails_PortIsClosedAllTheSame) {
  object_->OpenPort();
  environment_.settings.ThrowAtCall(environment_.settings.calls() + 1);
  object_.reset();
  EXPECT_FALSE(ports_.line.open);
  EXPECT_EQ(record_.back(), L"Destroyed");
  EXPECT_EQ(Remembered(L"COM1"), L"<none>");
}

TEST_F(CKespCOMPort3TeardownTest, NoTemporaryFolder_WritesNothing) {
  environment_.files.SetTemporaryFolder(L"");
  Make();
  const int calls = environment_.settings.calls();
  object_.reset();
  EXPECT_EQ(environment_.settings.calls(), calls);
}

}  // namespace
}  // namespace kesp
