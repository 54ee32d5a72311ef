// Unit tests of the RS-232 form as it is made and loaded: its pages and controls, the settings.
#include <set>
#include <stdexcept>

#include "dialogs/frm_com_settings_fixture.h"

namespace kesp {
namespace {

class frmCOMSettingsLoadTest : public frmCOMSettingsFixture {
 protected:
  // Every setting that the form shows, each different from that of a new transport.
  void SetEverything() {
    AllowRates(3, 12, 7);
    port_.SetPort(3);
    port_.SetControllerStyle(EKespControllerStyle3::CS_OMEGA);
    port_.SetParity(EKespParity3::PARITY_MARK);
    port_.SetDataBits(EKespDataBits3::DATA_5BITS);
    port_.SetStopBits(EKespStopBits3::STOP_1_5BITS);
    port_.SetTimeOut(12345);
    port_.SetCheckNonAscii(false);
    port_.SetStripCRLF(false);
    port_.SetCreateLogFile(true);
    port_.SetUseSmartSwitch(true);
    port_.SmartSwitch()->SetStyle(ESmartSwitchStyle3::ssBB8port);
    port_.SetUseIRDongle(true);
    port_.SetUseRedirector(true);
    port_.SetInstrAddr(-7);
  }
};

TEST_F(frmCOMSettingsLoadTest, New_EachControlHasANumberOfItsOwn) {
  std::set<int> ids;
  for (const Control* control : Make().controls()) EXPECT_TRUE(ids.insert(control->id()).second);
}

TEST_F(frmCOMSettingsLoadTest, New_CaptionTopicToolTipsFiltersAndRange) {
  const frmCOMSettings& form = Make();
  EXPECT_EQ(form.caption(), L"RS-232 Communication Settings");
  EXPECT_EQ(form.own_topic(), HelpTopic::kComSettings);
  EXPECT_EQ(form.help_context(), kHelpTopic);
  EXPECT_EQ(form.chkUseIRDongle.tool_tip(), L"Using IR dongle");
  EXPECT_EQ(form.chkUseRFModem.tool_tip(), L"Using RF modem for wireless communications");
  EXPECT_EQ(form.chkUseRedirector.tool_tip(), L"Using COM port redirector software");
  EXPECT_EQ(form.chkUseSmartSwitch.tool_tip(), L"");
  EXPECT_EQ(form.txtInstrAddress.filter(), KeyFilter::kDigits);
  EXPECT_EQ(form.txtTimeout.filter(), KeyFilter::kSignedDecimal);
  EXPECT_EQ(form.udTimeout.minimum(), 100);
  EXPECT_EQ(form.udTimeout.maximum(), 10000);
  EXPECT_EQ(form.udTimeout.step(), 100);
}

TEST_F(frmCOMSettingsLoadTest, Flags_EachCombination_PagesListsAndDongle) {
  using Tab = TabStrip::Tab;
  for (int flags = 0; flags < 8; ++flags) {
    const bool extended = (flags & 1) != 0;
    const bool smart_switch = (flags & 2) != 0;
    const frmCOMSettings& form = Show({extended, smart_switch, (flags & 4) != 0, 0});
    std::vector<Tab> tabs = {{L"COM Port", 0}};
    if (smart_switch) tabs.push_back({L"SmartSwitch", 1});
    if (extended) tabs.push_back({L"Extended", 2});
    EXPECT_TRUE(form.tabSettings.tabs() == tabs) << flags;
    EXPECT_EQ(form.tabSettings.selection(), 0u) << flags;
    EXPECT_TRUE(form.framSettings[0].visible()) << flags;
    EXPECT_FALSE(form.framSettings[1].visible()) << flags;
    EXPECT_FALSE(form.framSettings[2].visible()) << flags;
    EXPECT_EQ(form.chkUseIRDongle.visible(), (flags & 4) != 0) << flags;
    EXPECT_EQ(Described(form.icboCOMPort.entries()), (Lines{L"COM1 1 [COMPort]", L"COM3 3 [COMPort]"}));
    EXPECT_EQ(form.cboBaudRate.entries().size(), 14u) << flags;
    EXPECT_EQ(form.icboSmartSwitchStyle.entries().size(), smart_switch ? 2u : 0u) << flags;
    const std::pair<const ChoiceList*, std::size_t> lists[] = {
        {&form.cboMinBaudRate, 14}, {&form.cboMaxBaudRate, 14}, {&form.cboControllerStyle, 2},
        {&form.cboParity, 5},       {&form.cboDataBits, 5},     {&form.cboStopBits, 3}};
    for (const auto& [list, count] : lists) EXPECT_EQ(list->entries().size(), extended ? count : 0u) << flags;
    EXPECT_EQ(Selected(form.icboCOMPort), L"COM1") << flags;
    EXPECT_EQ(Selected(form.cboBaudRate), L"9600") << flags;
  }
}

TEST_F(frmCOMSettingsLoadTest, BeforeTheFirstPaint_NothingIsLoaded) {
  SetEverything();
  const frmCOMSettings& form = Make();
  for (const ChoiceList* list : {&form.icboCOMPort, &form.cboBaudRate, &form.icboSmartSwitchStyle,
                                 &form.cboMinBaudRate, &form.cboMaxBaudRate, &form.cboControllerStyle,
                                 &form.cboParity, &form.cboDataBits, &form.cboStopBits}) {
    EXPECT_FALSE(list->entries().empty());
    EXPECT_EQ(list->selected(), nullptr);
  }
  EXPECT_FALSE(form.chkUseRedirector.checked());
  EXPECT_FALSE(form.cmdRFProperties.enabled());
  EXPECT_FALSE(form.lblInstrAddress.enabled());
  EXPECT_FALSE(form.txtInstrAddress.enabled());
}

TEST_F(frmCOMSettingsLoadTest, FirstPaint_LoadsEverythingInOrder) {
  SetEverything();
  Make().FirstPaint();
  EXPECT_EQ(record_, (Lines{L"cboMinBaudRate selects 1200",
                            L"cboMaxBaudRate selects 460800",
                            L"chkCreateLogFile checked",
                            L"txtTimeout text 12345",
                            L"cboControllerStyle selects Omega 847/848",
                            L"cboParity selects Mark",
                            L"cboDataBits selects 5 bits",
                            L"cboStopBits selects 1.5 bits",
                            L"chkUseSmartSwitch checked",
                            L"lblSmartSwitchStyle enabled",
                            L"icboSmartSwitchStyle enabled",
                            L"cmdTestSmartSwitch enabled",
                            L"icboSmartSwitchStyle selects 8-port",
                            L"icboCOMPort selects COM3",
                            L"cboBaudRate selects 19200",
                            L"chkUseIRDongle checked",
                            L"chkUseRedirector checked",
                            L"txtInstrAddress text -7",
                            L"lblSmartSwitchStyle enabled",
                            L"icboSmartSwitchStyle enabled",
                            L"cmdTestSmartSwitch enabled"}));
  EXPECT_TRUE(user_.boxes().empty());
}

TEST_F(frmCOMSettingsLoadTest, FirstPaint_OtherBoxesAndTheModemInTheirPlaces) {
  port_.SetUseRFModem(true);
  port_.SetUseRedirector(true);
  Make().FirstPaint();
  EXPECT_EQ(record_,
            (Lines{L"cboMinBaudRate selects 150",    L"cboMaxBaudRate selects 921600",
                   L"chkCheckNonASCII checked",      L"chkStripCRLF checked",
                   L"txtTimeout text 3000",          L"cboControllerStyle selects Kesp 7100/7200/7300",
                   L"cboParity selects None",        L"cboDataBits selects 8 bits",
                   L"cboStopBits selects 1 bit",     L"icboSmartSwitchStyle selects 6-port",
                   L"icboCOMPort selects COM1",      L"cboBaudRate selects 9600",
                   L"chkUseRedirector checked",      L"chkUseRFModem checked",
                   L"cboBaudRate selects 9600",      L"lblBaudRate disabled",
                   L"cboBaudRate disabled",          L"cmdRFProperties enabled",
                   L"lblInstrAddress enabled",       L"txtInstrAddress enabled",
                   L"txtInstrAddress text 0",        L"lblSmartSwitchStyle disabled",
                   L"icboSmartSwitchStyle disabled", L"cmdTestSmartSwitch disabled"}));
}

TEST_F(frmCOMSettingsLoadTest, FirstPaint_WithoutThePages_LoadsTheFirstOneOnly) {
  SetEverything();
  Make(kNothing).FirstPaint();
  EXPECT_EQ(record_,
            (Lines{L"icboCOMPort selects COM3", L"cboBaudRate selects 19200", L"chkUseRedirector checked",
                   L"txtInstrAddress text -7", L"lblSmartSwitchStyle disabled",
                   L"icboSmartSwitchStyle disabled", L"cmdTestSmartSwitch disabled"}));
  EXPECT_EQ(form_->txtTimeout.text(), L"");
}

TEST_F(frmCOMSettingsLoadTest, FirstPaint_ChangesNothingOfTheTransport) {
  SetEverything();
  const auto before = SettingsOf(port_);
  Show();
  EXPECT_TRUE(SettingsOf(port_) == before);
  EXPECT_EQ(port_.SmartSwitch()->Style(), ESmartSwitchStyle3::ssBB8port);
}

TEST_F(frmCOMSettingsLoadTest, FirstPaint_ValuesThatAreNotOffered_SelectNothing) {
  port_.SetMinBaudRate(EKespBaudRate3::brNone);
  port_.SetControllerStyle(EKespControllerStyle3::CS_MAXSTREAM);
  port_.SetParity(As<EKespParity3>(9));
  port_.SmartSwitch()->SetStyle(ESmartSwitchStyle3::ssBB4port);
  port_.SetMaxBaudRate(EKespBaudRate3::br300);
  const frmCOMSettings& form = Show();
  EXPECT_EQ(form.cboMinBaudRate.selected(), nullptr);
  EXPECT_EQ(Selected(form.cboMaxBaudRate), L"300");
  EXPECT_EQ(form.cboControllerStyle.selected(), nullptr);
  EXPECT_EQ(form.cboParity.selected(), nullptr);
  EXPECT_EQ(form.icboSmartSwitchStyle.selected(), nullptr);
  EXPECT_EQ(Described(form.cboBaudRate.entries()), (Lines{L"<unknown> -1", L"150 0", L"300 1"}));
  EXPECT_EQ(form.cboBaudRate.selected(), nullptr);  // 9600 is out of the range by now
}

TEST_F(frmCOMSettingsLoadTest, FirstPaint_FailureInside_IsShownAndTheDialogEnds) {
  port_.SetUseRFModem(true);
  Make();
  view_.on_change = [&](const Control&, Change) {
    if (record_.back() == L"cboBaudRate disabled") throw std::runtime_error("no more paint");
  };
  form_->FirstPaint();
  ExpectBoxes({ErrorBox(L"edit COM port settings", L"51 - Internal error (no more paint)\r\n(KespCommObj)")});
  EXPECT_FALSE(form_->is_open());
  EXPECT_TRUE(form_->bCancel());
}

}  // namespace
}  // namespace kesp
