// Failures swept over the forms: what is refused or lost is shown, and the form can be confirmed afterwards
// or has closed without a change.
#include <gtest/gtest.h>

#include "dialogs/frm_com_settings_fixture.h"
#include "dialogs/frm_rf_modem_settings_fixture.h"
#include "dialogs/frm_tcp_settings_fixture.h"
#include "support/fault_sweep_fixture.h"

namespace kesp {
namespace {

class TcpFormStage final : public frmTCPSettingsFixture, public FaultStage {
 public:
  TcpFormStage() {
    fakes_.pump.OnPump(nullptr);
    events_.record = [](const std::wstring&) {};
    tcp_->SetCreateLogFile(false);
    before_ = Settings();
    form_ = std::make_unique<frmTCPSettings>(fakes_.user, *tcp_, TcpDialogOptions{true, 0});
    form_->SetView(&view_);
  }

  void TestBody() override {}

  std::vector<FaultySeam> Seams() override { return {{"user surface", fakes_.user.faults}}; }

  // A form that has closed by itself has changed nothing.
  void ExpectWhole() override { EXPECT_TRUE(!form_->bCancel() || Settings() == before_); }
  void ExpectWorking() override {
    if (!form_->is_open()) return;
    FillIn();
    OK();
    EXPECT_FALSE(form_->is_open());
    EXPECT_EQ(tcp_->IPAddress(), L"10.20.30.40");
    EXPECT_EQ(tcp_->TimeOutmSecs(), 1500);
  }

  void Paint() { form_->FirstPaint(); }
  void FillIn() {
    Paint();
    TypeOctets({L"10", L"20", L"30", L"40"});
    form_->txtTimeout.Type(L"1500");
  }
  void Confirm() { OK(); }
  void AskForHelp() {
    form_->Use([this] { form_->cmdOKCancelHelp[Form::kHelp].Click(); });
  }

 private:
  std::tuple<EIPType, std::wstring, std::int16_t, std::int16_t, bool> before_;
};

class ComFormStage final : public frmCOMSettingsFixture, public FaultStage {
 public:
  ComFormStage() {
    environment_.clock.SetStepPerReading(50);
    Make();
  }

  void TestBody() override {}

  std::vector<FaultySeam> Seams() override {
    return {{"user surface", user_.faults}, {"ports", ports_.faults}, {"serial control", ports_.line.faults}};
  }

  void ExpectWhole() override {}
  void ExpectWorking() override {
    if (!form_->is_open()) return;
    form_->FirstPaint();
    form_->Use([this] { form_->chkUseRFModem.SetChecked(false); });
    ClickOK();
    EXPECT_FALSE(form_->is_open());
    EXPECT_EQ(port_.BaudRate(), Rate(6));
  }

  void Paint() { form_->FirstPaint(); }
  void Confirm() { ClickOK(); }
  void UseSwitch() {
    Paint();
    form_->Use([this] { form_->chkUseSmartSwitch.SetChecked(true); });
  }
  void TestSwitch() { Click(form_->cmdTestSmartSwitch); }
  void UseModem() {
    Paint();
    form_->Use([this] { form_->chkUseRFModem.SetChecked(true); });
  }
  void ShowModem() { Click(form_->cmdRFProperties); }
};

class ModemFormStage final : public frmRFModemSettingsFixture, public FaultStage {
 public:
  ModemFormStage() {
    AnswersQuestions();
    // Records are kept where nothing may be thrown.
    ports_.line.record = [](const std::string&) {};
    events_.record = [](const std::wstring&) {};
  }

  void TestBody() override {}

  std::vector<FaultySeam> Seams() override {
    return {{"user surface", environment_.user.faults}, {"serial control", ports_.line.faults}};
  }

  void ExpectWhole() override { ExpectLeftInOrder(); }
  void ExpectWorking() override {
    if (!form_->is_open()) return;
    OK();
    EXPECT_FALSE(form_->is_open());
  }

  void Paint() { form_->FirstPaint(); }
  void FillIn() {
    Paint();
    form_->txtChannel.Type(L"12");
    for (const char* command : {"ATID3332\r", "ATCHC\r", "ATMY1A\r", "ATCTF\r"}) Confirms({command});
  }
  void Confirm() { OK(); }
};

// 7: even the error box fails.
const FaultCase<TcpFormStage> kTcpCases[] = {
    {.name = "FirstPaint", .run = &TcpFormStage::Paint, .numbers = {0}},
    {.name = "OK", .run = &TcpFormStage::Confirm, .numbers = {0}, .prepare = &TcpFormStage::FillIn},
    {.name = "Help", .run = &TcpFormStage::AskForHelp, .numbers = {0}, .prepare = &TcpFormStage::Paint},
};
const FaultCase<ComFormStage> kComCases[] = {
    {.name = "FirstPaint", .run = &ComFormStage::Paint, .numbers = {0}},
    {.name = "OK", .run = &ComFormStage::Confirm, .numbers = {0}, .prepare = &ComFormStage::Paint},
    {.name = "TestSmartSwitch",
     .run = &ComFormStage::TestSwitch,
     .numbers = {0},
     .prepare = &ComFormStage::UseSwitch},
    {.name = "RFProperties",
     .run = &ComFormStage::ShowModem,
     .numbers = {0, 7},
     .prepare = &ComFormStage::UseModem},
};
const FaultCase<ModemFormStage> kModemCases[] = {
    {.name = "FirstPaint", .run = &ModemFormStage::Paint, .numbers = {0}},
    {.name = "OK", .run = &ModemFormStage::Confirm, .numbers = {0, 7}, .prepare = &ModemFormStage::FillIn},
};

class frmTCPSettingsFaultsTest : public testing::TestWithParam<FaultCase<TcpFormStage>> {};
class frmCOMSettingsFaultsTest : public testing::TestWithParam<FaultCase<ComFormStage>> {};
class frmRFModemSettingsFaultsTest : public testing::TestWithParam<FaultCase<ModemFormStage>> {};

TEST_P(frmTCPSettingsFaultsTest, AnyCallFails_FormCanBeConfirmed) {
  SweepSeams(GetParam().Operation());
}
TEST_P(frmTCPSettingsFaultsTest, AnyAllocationFails_FormCanBeConfirmed) {
  SweepAllocations(GetParam().Operation());
}
TEST_P(frmCOMSettingsFaultsTest, AnyCallFails_FormCanBeConfirmed) {
  SweepSeams(GetParam().Operation());
}
TEST_P(frmCOMSettingsFaultsTest, AnyAllocationFails_FormCanBeConfirmed) {
  SweepAllocations(GetParam().Operation());
}
TEST_P(frmRFModemSettingsFaultsTest, AnyCallFails_FormCanBeConfirmed) {
  SweepSeams(GetParam().Operation());
}
TEST_P(frmRFModemSettingsFaultsTest, AnyAllocationFails_FormCanBeConfirmed) {
  SweepAllocations(GetParam().Operation());
}

INSTANTIATE_TEST_SUITE_P(Each, frmTCPSettingsFaultsTest, testing::ValuesIn(kTcpCases), NameOf<TcpFormStage>);
INSTANTIATE_TEST_SUITE_P(Each, frmCOMSettingsFaultsTest, testing::ValuesIn(kComCases), NameOf<ComFormStage>);
INSTANTIATE_TEST_SUITE_P(Each, frmRFModemSettingsFaultsTest, testing::ValuesIn(kModemCases),
                         NameOf<ModemFormStage>);

}  // namespace
}  // namespace kesp
