// Unit tests of what OK writes from the RS-232 form to the transport, in which order, and what it leaves.
#include "dialogs/frm_com_settings_fixture.h"

namespace kesp {
namespace {

class frmCOMSettingsWriteTest : public frmCOMSettingsFixture {
 protected:
  // Another choice for everything that has one; lowest, highest and present rate as given.
  void ChangeEverything(const wchar_t* minimum = L"600", const wchar_t* maximum = L"38400",
                        const wchar_t* rate = L"19200") {
    frmCOMSettings& form = *form_;
    Choose(form.cboControllerStyle, L"Kesp 7100/7200/7300");
    Choose(form.cboMinBaudRate, minimum);
    Choose(form.cboMaxBaudRate, maximum);
    Choose(form.cboBaudRate, rate);
    Choose(form.cboParity, L"Space");
    Choose(form.cboDataBits, L"6 bits");
    Choose(form.cboStopBits, L"2 bits");
    form.txtTimeout.Type(L"450");
    Click(form.chkStripCRLF);
    Click(form.chkCheckNonASCII);
    Click(form.chkCreateLogFile);
    Click(form.chkUseSmartSwitch);
    Choose(form.icboSmartSwitchStyle, L"8-port");
    Choose(form.icboCOMPort, L"COM3");
    Click(form.chkUseIRDongle);
    Click(form.chkUseRedirector);
    form.txtInstrAddress.Type(L"77");
  }

  void ExpectNotGathered(const std::wstring& failure) {
    ExpectBoxes({ErrorBox(L"gather communication settings", failure)});
  }

  // How far writing what ChangeEverything() chose has come.
  enum class Upto { kNothing, kChecks, kAll };
  void ExpectWritten(Upto upto) const {
    const bool checks = upto != Upto::kNothing;
    const bool all = upto == Upto::kAll;
    EXPECT_EQ(port_.MinBaudRate(), Rate(checks ? 2 : 0));
    EXPECT_EQ(port_.MaxBaudRate(), Rate(checks ? 8 : 13));
    EXPECT_EQ(port_.CheckNonAscii(), !checks);
    EXPECT_EQ(port_.StripCRLF(), !checks);
    EXPECT_EQ(port_.CreateLogFile(), checks);
    EXPECT_EQ(port_.TimeOut(), all ? 450 : 3000);
    EXPECT_EQ(port_.GetSettings(), all ? L"19200,S,6,2" : L"9600,N,8,1");
    EXPECT_EQ(port_.UseSmartSwitch(), all);
    EXPECT_EQ(port_.SmartSwitch()->Style(),
              all ? ESmartSwitchStyle3::ssBB8port : ESmartSwitchStyle3::ssBB6port);
    EXPECT_EQ(port_.SmartSwitch()->NumPorts(), all ? 8 : 6);
    EXPECT_EQ(port_.Port(), all ? 3 : 1);
    EXPECT_EQ(port_.UseIRDongle(), all);
    EXPECT_EQ(port_.UseRedirector(), all);
    EXPECT_FALSE(port_.UseRFModem());
    EXPECT_EQ(port_.InstrAddr(), all ? 77 : 0);
  }
};

TEST_F(frmCOMSettingsWriteTest, OK_WritesEverythingAndCloses) {
  Show();
  ChangeEverything();
  ExpectWritten(Upto::kNothing);
  ClickOK();
  ExpectWritten(Upto::kAll);
  EXPECT_FALSE(form_->is_open());
  EXPECT_FALSE(form_->bCancel());
  EXPECT_TRUE(user_.boxes().empty());
}

TEST_F(frmCOMSettingsWriteTest, OK_NothingChanged_LeavesEverything) {
  port_.SetUseRFModem(true);
  port_.SetInstrAddr(9);
  const auto before = SettingsOf(port_);
  Show();
  ClickOK();
  EXPECT_FALSE(form_->is_open());
  EXPECT_TRUE(SettingsOf(port_) == before);
}

TEST_F(frmCOMSettingsWriteTest, OK_WithModem_WritesItsUseItsRateAndItsAddress) {
  AllowRates(0, 13, 10);
  Show(kNothing);
  Click(form_->chkUseRFModem);
  form_->txtInstrAddress.Type(L"12");
  ClickOK();
  EXPECT_TRUE(port_.UseRFModem());
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br9600);
  EXPECT_EQ(port_.InstrAddr(), 12);
}

TEST_F(frmCOMSettingsWriteTest, OK_NewTransport_OffersTheUnknownRateAndLeavesIt) {
  AllowNoRate();
  const auto before = SettingsOf(port_);
  const frmCOMSettings& form = Show();
  EXPECT_EQ(Described(form.cboBaudRate.entries()), Lines{L"<unknown> -1"});
  EXPECT_EQ(Selected(form.cboBaudRate), L"<unknown>");
  ClickOK();
  EXPECT_FALSE(form.is_open());
  EXPECT_TRUE(SettingsOf(port_) == before);
}

TEST_F(frmCOMSettingsWriteTest, OK_PagesNotShown_AreNotWritten) {
  port_.SetUseIRDongle(true);
  port_.SmartSwitch()->SetStyle(ESmartSwitchStyle3::ssBB4port);
  const auto before = SettingsOf(port_);
  frmCOMSettings& form = Show(kNothing);
  form.txtTimeout.Type(L"450");
  Click(form.chkCreateLogFile);
  Click(form.chkUseSmartSwitch);
  ClickOK();
  EXPECT_FALSE(form.is_open());
  EXPECT_TRUE(SettingsOf(port_) == before);
  EXPECT_EQ(port_.SmartSwitch()->Style(), ESmartSwitchStyle3::ssBB4port);
}

TEST_F(frmCOMSettingsWriteTest, OK_ValuesThatAreNotOffered_AreLeft) {
  port_.SetControllerStyle(EKespControllerStyle3::CS_PRECIDIA);
  port_.SetParity(As<EKespParity3>(9));
  port_.SetDataBits(As<EKespDataBits3>(-2));
  port_.SetStopBits(As<EKespStopBits3>(7));
  port_.SmartSwitch()->SetStyle(ESmartSwitchStyle3::ssBB4port);
  const auto before = SettingsOf(port_);
  Show();
  ClickOK();
  EXPECT_FALSE(form_->is_open());
  EXPECT_TRUE(SettingsOf(port_) == before);
  EXPECT_EQ(port_.SmartSwitch()->Style(), ESmartSwitchStyle3::ssBB4port);
}

TEST_F(frmCOMSettingsWriteTest, OK_ControllerStyleIsWrittenAnewAndTheFramingBehindIt) {
  Show();
  Choose(form_->cboControllerStyle, L"Omega 847/848");
  Choose(form_->cboParity, L"Odd");
  Choose(form_->cboDataBits, L"8 bits");
  Choose(form_->cboStopBits, L"2 bits");
  // A program meanwhile; the list still shows the user's choice.
  port_.SetControllerStyle(EKespControllerStyle3::CS_MAXSTREAM);
  ClickOK();
  EXPECT_EQ(port_.ControllerStyle(), EKespControllerStyle3::CS_OMEGA);
  EXPECT_EQ(port_.GetSettings(), L"9600,O,8,2");
}

TEST_F(frmCOMSettingsWriteTest, OK_TimeoutConfirmedWithoutLeavingItsBox_IsWrittenAsItStands) {
  for (const auto& [text, time_out] :
       {std::pair{L"50", 50}, std::pair{L"20000", 20000}, std::pair{L"", 0}, std::pair{L"250.5", 250}}) {
    Show();
    form_->txtTimeout.Type(text);
    ClickOK();
    EXPECT_FALSE(form_->is_open());
    EXPECT_EQ(port_.TimeOut(), time_out);
  }
}

TEST_F(frmCOMSettingsWriteTest, OK_MinimumAboveTheOldMaximum_IsRefusedAtOnce) {
  AllowRates(0, 6, 6);
  const auto before = SettingsOf(port_);
  Show();
  ChangeEverything(L"19200", L"38400", L"19200");
  ClickOK();
  ExpectNotGathered(std::to_wstring(com_port_error::ERR_INVALID_BAUD_RATE) +
                    L" - Cannot set minimum baud rate higher than maximum baud rate.\r\n"
                    L"(CKespCOMPort3 - MaxBaudRate)");
  EXPECT_TRUE(form_->is_open());
  EXPECT_FALSE(form_->bCancel());
  EXPECT_TRUE(SettingsOf(port_) == before);
}

TEST_F(frmCOMSettingsWriteTest, OK_MaximumBelowTheOldMinimum_FollowsTheMinimum) {
  AllowRates(6, 8, 6);
  Show();
  ChangeEverything(L"150", L"300", L"300");
  ClickOK();
  EXPECT_FALSE(form_->is_open());
  EXPECT_EQ(port_.MinBaudRate(), EKespBaudRate3::br150);
  EXPECT_EQ(port_.MaxBaudRate(), EKespBaudRate3::br300);
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br300);
}

TEST_F(frmCOMSettingsWriteTest, OK_TimeoutRefused_RangeAndChecksAreWritten) {
  Show();
  ChangeEverything();
  const std::pair<const wchar_t*, std::wstring> refused[] = {
      {L"-5", std::to_wstring(com_port_error::ERR_INVALID_TIMEOUT) +
                  L" - Invalid timeout setting.\r\n([CKespCOMPort3 - TimeOut])"},
      {L"3000000000", L"6 - Overflow\r\n(KespCommObj)"}};
  for (const auto& [text, failure] : refused) {
    form_->txtTimeout.Type(text);
    ClickOK();
    ExpectNotGathered(failure);
    ExpectWritten(Upto::kChecks);
    EXPECT_TRUE(form_->is_open());
  }
  // Set right, the rest follows.
  form_->txtTimeout.Type(L"450");
  ClickOK();
  ExpectWritten(Upto::kAll);
  EXPECT_FALSE(form_->is_open());
  EXPECT_FALSE(form_->bCancel());
}

TEST_F(frmCOMSettingsWriteTest, OK_RateRefused_SwitchAndPortAreWritten) {
  frmCOMSettings& form = Show({.show_smart_switch_page = true, .show_ir_dongle = true});
  Click(form.chkUseSmartSwitch);
  Choose(form.icboSmartSwitchStyle, L"8-port");
  Choose(form.icboCOMPort, L"COM3");
  Choose(form.cboBaudRate, L"150");
  Click(form.chkUseIRDongle);
  Click(form.chkUseRedirector);
  form.txtInstrAddress.Type(L"77");
  // As the modem's properties do.
  port_.SetMinBaudRate(EKespBaudRate3::br1200);
  ClickOK();
  ExpectNotGathered(std::to_wstring(com_port_error::ERR_BAUD_RATE_NOT_SUPPORTED) +
                    L" - Baud rate not supported.\r\n(CKespCOMPort3 - BaudRate)");
  EXPECT_TRUE(form.is_open());
  EXPECT_TRUE(port_.UseSmartSwitch());
  EXPECT_EQ(port_.SmartSwitch()->Style(), ESmartSwitchStyle3::ssBB8port);
  EXPECT_EQ(port_.Port(), 3);
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br9600);
  EXPECT_FALSE(port_.UseIRDongle());
  EXPECT_FALSE(port_.UseRedirector());
  EXPECT_EQ(port_.InstrAddr(), 0);
}

}  // namespace
}  // namespace kesp
