// Unit tests of what the controls of the RS-232 form do to one another and to the transport at once.
#include "dialogs/frm_com_settings_fixture.h"

namespace kesp {
namespace {

constexpr wchar_t kConflictTitle[] = L"RF Modem / IR Conflict";
constexpr wchar_t kConflict[] =
    L"You cannot use the RF modem (wireless) feature and the IR dongle simultaneously.";

class frmCOMSettingsRulesTest : public frmCOMSettingsFixture {
 protected:
  // A pair of lists chosen by the user, and what becomes of the list of rates.
  void ExpectRange(const wchar_t* minimum, const wchar_t* maximum, std::size_t rates,
                   const wchar_t* selected) {
    frmCOMSettings& form = Show();
    Choose(form.cboMinBaudRate, minimum);
    Choose(form.cboMaxBaudRate, maximum);
    const std::vector<ChoiceList::Entry>& entries = form.cboBaudRate.entries();
    ASSERT_EQ(entries.size(), rates) << "up to " << SystemCodePage().ToBytes(maximum);
    if (rates > 0) {
      EXPECT_EQ(entries.front().text, minimum);
      EXPECT_EQ(entries.back().text, maximum);
    }
    EXPECT_EQ(Selected(form.cboBaudRate), selected);
  }
};

TEST_F(frmCOMSettingsRulesTest, ControllerStyle_WrittenAtOnceWithItsFraming_AndNotUndoneByCancel) {
  frmCOMSettings& form = Show();
  Choose(form.cboParity, L"Space");
  Choose(form.cboStopBits, L"2 bits");
  record_.clear();
  Choose(form.cboControllerStyle, L"Omega 847/848");
  EXPECT_EQ(record_, (Lines{L"cboControllerStyle selects Omega 847/848", L"cboParity selects Even",
                            L"cboDataBits selects 7 bits", L"cboStopBits selects 1 bit"}));
  EXPECT_EQ(port_.ControllerStyle(), EKespControllerStyle3::CS_OMEGA);
  Click(form.cmdOKCancelHelp[Form::kCancel]);
  EXPECT_EQ(port_.ControllerStyle(), EKespControllerStyle3::CS_OMEGA);
  EXPECT_EQ(port_.GetSettings(), L"9600,E,7,1");
}

TEST_F(frmCOMSettingsRulesTest, ControllerStyle_WritesNothingElse) {
  port_.SetControllerStyle(EKespControllerStyle3::CS_OMEGA);
  frmCOMSettings& form = Show();
  Choose(form.icboCOMPort, L"COM3");
  Choose(form.cboBaudRate, L"300");
  Click(form.chkUseRedirector);
  Click(form.chkStripCRLF);
  form.txtTimeout.Type(L"500");
  auto expected = SettingsOf(port_);
  Choose(form.cboControllerStyle, L"Kesp 7100/7200/7300");
  EXPECT_EQ(port_.GetSettings(), L"9600,N,8,1");
  port_.SetControllerStyle(EKespControllerStyle3::CS_OMEGA);
  EXPECT_TRUE(SettingsOf(port_) == expected);
  EXPECT_EQ(form.txtTimeout.text(), L"500");
}

TEST_F(frmCOMSettingsRulesTest, UseRFModem_FixesTheRateUntilItIsUnchecked) {
  AllowRates(0, 13, 10);
  frmCOMSettings& form = Show();
  Click(form.chkUseRFModem);
  EXPECT_EQ(record_, (Lines{L"chkUseRFModem checked", L"cboBaudRate selects 9600", L"lblBaudRate disabled",
                            L"cboBaudRate disabled", L"cmdRFProperties enabled", L"lblInstrAddress enabled",
                            L"txtInstrAddress enabled"}));
  record_.clear();
  Click(form.chkUseRFModem);
  EXPECT_EQ(record_,
            (Lines{L"chkUseRFModem unchecked", L"lblBaudRate enabled", L"cboBaudRate enabled",
                   L"cmdRFProperties disabled", L"lblInstrAddress disabled", L"txtInstrAddress disabled"}));
  EXPECT_EQ(Selected(form.cboBaudRate), L"9600");
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br115200);
  EXPECT_FALSE(port_.UseRFModem());
}

TEST_F(frmCOMSettingsRulesTest, UseRFModem_RateNotInTheList_StaysTheUsersChoice) {
  AllowRates(9, 13, 10);
  const frmCOMSettings& form = Show();
  Click(form_->chkUseRFModem);
  EXPECT_EQ(Selected(form.cboBaudRate), L"115200");
  EXPECT_TRUE(form.lblBaudRate.enabled());
  EXPECT_TRUE(form.cboBaudRate.enabled());
  EXPECT_TRUE(form.cmdRFProperties.enabled());
  EXPECT_TRUE(form.lblInstrAddress.enabled());
  EXPECT_TRUE(form.txtInstrAddress.enabled());
}

TEST_F(frmCOMSettingsRulesTest, UseRFModem_WithTheDongle_UnchecksItAndSaysSo) {
  port_.SetUseIRDongle(true);
  Show();
  user_.SetPointer(MousePointer::kBusy);
  Click(form_->chkUseRFModem);
  ExpectRemark(kConflictTitle, kConflict);
  EXPECT_EQ(record_,
            (Lines{L"chkUseRFModem checked", L"chkUseIRDongle unchecked", L"Box RF Modem / IR Conflict",
                   L"cboBaudRate selects 9600", L"lblBaudRate disabled", L"cboBaudRate disabled",
                   L"cmdRFProperties enabled", L"lblInstrAddress enabled", L"txtInstrAddress enabled"}));
}

TEST_F(frmCOMSettingsRulesTest, UseIRDongle_WithTheModem_UnchecksItAndSaysSo) {
  port_.SetUseRFModem(true);
  Show();
  user_.SetPointer(MousePointer::kBusy);
  Click(form_->chkUseIRDongle);
  ExpectRemark(kConflictTitle, kConflict);
  EXPECT_EQ(record_, (Lines{L"chkUseIRDongle checked", L"chkUseRFModem unchecked", L"lblBaudRate enabled",
                            L"cboBaudRate enabled", L"cmdRFProperties disabled", L"lblInstrAddress disabled",
                            L"txtInstrAddress disabled", L"Box RF Modem / IR Conflict"}));
}

TEST_F(frmCOMSettingsRulesTest, UseIRDongle_Alone_ChangesNothingElse) {
  Show();
  Click(form_->chkUseIRDongle);
  Click(form_->chkUseIRDongle);
  EXPECT_EQ(record_, (Lines{L"chkUseIRDongle checked", L"chkUseIRDongle unchecked"}));
}

TEST_F(frmCOMSettingsRulesTest, Load_TransportHasBoth_ModemWinsAndItIsSaid) {
  port_.SetUseIRDongle(true);
  port_.SetUseRFModem(true);
  Make().FirstPaint();
  ExpectRemark(kConflictTitle, kConflict);
  const Lines end(record_.end() - 14, record_.end());
  EXPECT_EQ(end,
            (Lines{L"chkUseIRDongle checked", L"chkUseRFModem checked", L"chkUseIRDongle unchecked",
                   L"Box RF Modem / IR Conflict", L"cboBaudRate selects 9600", L"lblBaudRate disabled",
                   L"cboBaudRate disabled", L"cmdRFProperties enabled", L"lblInstrAddress enabled",
                   L"txtInstrAddress enabled", L"txtInstrAddress text 0", L"lblSmartSwitchStyle disabled",
                   L"icboSmartSwitchStyle disabled", L"cmdTestSmartSwitch disabled"}));
  EXPECT_TRUE(port_.UseIRDongle());
  // Without the dongle on the page there is no conflict.
  Show(kNothing);
  ExpectBoxes({});
  EXPECT_TRUE(form_->chkUseRFModem.checked());
  EXPECT_FALSE(form_->chkUseIRDongle.checked());
}

TEST_F(frmCOMSettingsRulesTest, UseSmartSwitch_EnablesItsStyleAndItsTest) {
  Show();
  Click(form_->chkUseSmartSwitch);
  Click(form_->chkUseSmartSwitch);
  EXPECT_EQ(record_, (Lines{L"chkUseSmartSwitch checked", L"lblSmartSwitchStyle enabled",
                            L"icboSmartSwitchStyle enabled", L"cmdTestSmartSwitch enabled",
                            L"chkUseSmartSwitch unchecked", L"lblSmartSwitchStyle disabled",
                            L"icboSmartSwitchStyle disabled", L"cmdTestSmartSwitch disabled"}));
  EXPECT_FALSE(port_.UseSmartSwitch());
}

TEST_F(frmCOMSettingsRulesTest, TestSmartSwitch_RunsWithWhatIsSaved) {
  environment_.clock.SetStepPerReading(1);
  frmCOMSettings& form = Show();
  std::string opened;
  ports_.line.record = [&](const std::string& call) {
    if (call.starts_with("Open")) opened = call;
  };
  Choose(form.icboCOMPort, L"COM3");
  Choose(form.cboBaudRate, L"300");
  Click(form.chkUseSmartSwitch);
  Choose(form.icboSmartSwitchStyle, L"8-port");
  Click(form.cmdTestSmartSwitch);
  ports_.line.record = [](const std::string&) {};
  const std::string release = "\x1B\x02\x02\x04";
  std::vector<std::string> expected;
  for (const char letter : std::string("ABCDEF")) {
    expected.insert(expected.end(), {release, std::string("\x1B\x02") + "0" + letter + "\r"});
  }
  EXPECT_EQ(ports_.line.writes, expected);
  EXPECT_EQ(opened, "Open COM1 9600,N,8,1");
  EXPECT_FALSE(ports_.line.open);
  EXPECT_EQ(port_.SmartSwitch()->Style(), ESmartSwitchStyle3::ssBB6port);
  EXPECT_TRUE(form.is_open());
}

TEST_F(frmCOMSettingsRulesTest, TestSmartSwitch_ClicksMeanwhileDoNothing) {
  environment_.clock.SetStepPerReading(1);
  frmCOMSettings& form = Show();
  Click(form.chkUseSmartSwitch);
  Choose(form.icboCOMPort, L"COM3");
  int clicks = 0;
  environment_.pump.OnPump([&] {
    if (++clicks > 9) return;
    Click(form.cmdOKCancelHelp[Form::kOK]);
    Click(form.cmdTestSmartSwitch);
    Click(form.cmdOKCancelHelp[Form::kCancel]);
    Click(form.chkUseRedirector);
  });
  Click(form.cmdTestSmartSwitch);
  EXPECT_GT(clicks, 0);
  EXPECT_EQ(ports_.line.writes.size(), 12u);
  EXPECT_EQ(port_.Port(), 1);
  EXPECT_FALSE(form.chkUseRedirector.checked());
  EXPECT_TRUE(form.is_open());
  EXPECT_TRUE(user_.boxes().empty());
}

TEST_F(frmCOMSettingsRulesTest, TestSmartSwitch_ClosedMeanwhile_EndsAsCancelled) {
  environment_.clock.SetStepPerReading(1);
  frmCOMSettings& form = Show();
  Click(form.chkUseSmartSwitch);
  environment_.pump.OnPump([&] { form.Close(); });
  Click(form.cmdTestSmartSwitch);
  EXPECT_FALSE(form.is_open());
  EXPECT_TRUE(form.bCancel());
  Click(form.cmdOKCancelHelp[Form::kOK]);
  EXPECT_TRUE(form.bCancel());
}

TEST_F(frmCOMSettingsRulesTest, TestSmartSwitch_Failure_IsShownOnce) {
  port_.SetUseSmartSwitch(true);
  ports_.line.open_failures = {8005};
  Show();
  Click(form_->cmdTestSmartSwitch);
  ExpectBoxes({ErrorBox(L"test SmartSwitch",
                        L"8005 - Port already open\r\n(CKespCOMPort3 - OpenPort() [commCOMControl])")});
  EXPECT_TRUE(form_->is_open());
}

TEST_F(frmCOMSettingsRulesTest, RateRange_Chosen_Leaves150OrNothing) {
  ExpectRange(L"150", L"9600", 7, L"150");
  ExpectRange(L"150", L"150", 1, L"150");
  ExpectRange(L"300", L"9600", 6, L"");
  ExpectRange(L"9600", L"9600", 1, L"");
  ExpectRange(L"9600", L"300", 0, L"");
}

TEST_F(frmCOMSettingsRulesTest, RateRange_ChosenWithTheModemInUse_TakesItsRateAway) {
  frmCOMSettings& form = Show();
  Click(form.chkUseRFModem);
  Choose(form.cboMaxBaudRate, L"57600");
  EXPECT_EQ(Selected(form.cboBaudRate), L"150");
  EXPECT_FALSE(form.cboBaudRate.enabled());
  Click(form.chkUseRFModem);
  Click(form.chkUseRFModem);
  EXPECT_EQ(Selected(form.cboBaudRate), L"9600");
}

TEST_F(frmCOMSettingsRulesTest, RateRange_EachListCounts_AndTheTransportIsLeftAlone) {
  frmCOMSettings& form = Show();
  Choose(form.cboMinBaudRate, L"9600");
  EXPECT_EQ(record_, (Lines{L"cboMinBaudRate selects 9600", L"cboBaudRate entries 8"}));
  Choose(form.cboBaudRate, L"19200");
  record_.clear();
  Choose(form.cboMaxBaudRate, L"115200");
  EXPECT_EQ(record_, (Lines{L"cboMaxBaudRate selects 115200", L"cboBaudRate entries 5"}));
  EXPECT_EQ(form.cboBaudRate.selected(), nullptr);
  EXPECT_EQ(port_.MinBaudRate(), EKespBaudRate3::br150);
  EXPECT_EQ(port_.MaxBaudRate(), EKespBaudRate3::br921600);
}

TEST_F(frmCOMSettingsRulesTest, RateRange_AnEndThatIsNotSelectedCountsAsTheLowestRate) {
  port_.SetMinBaudRate(EKespBaudRate3::brNone);
  Choose(Show().cboMaxBaudRate, L"300");
  EXPECT_EQ(Described(form_->cboBaudRate.entries()), (Lines{L"150 0", L"300 1"}));
  EXPECT_EQ(Selected(form_->cboBaudRate), L"150");
  AllowNoRate();
  Choose(Show().cboMinBaudRate, L"150");
  EXPECT_EQ(Described(form_->cboBaudRate.entries()), Lines{L"150 0"});
  Choose(form_->cboMinBaudRate, L"300");
  EXPECT_EQ(Described(form_->cboBaudRate.entries()), Lines{});
}

TEST_F(frmCOMSettingsRulesTest, Leaving_BringsTheTimeoutIntoItsRangeOnly) {
  frmCOMSettings& form = Show();
  for (TextBox* box : {&form.txtTimeout, &form.txtInstrAddress}) {
    box->Type(L"70000");
    form.LostFocus(*box);
  }
  EXPECT_EQ(form.txtTimeout.text(), L"10000");
  EXPECT_EQ(form.txtInstrAddress.text(), L"70000");
}

}  // namespace
}  // namespace kesp
