// Filling the RS-232 dialog, and what its controls do to one another.
#include "dialogs/frm_com_settings.h"

#include "dialogs/com_settings_lists.h"
#include "dialogs/dialog_ids.h"
#include "dialogs/editing.h"
#include "dialogs/timeout_arrows.h"
#include "support/busy_pointer.h"

namespace kesp {

namespace {

constexpr std::int16_t kLastPort = 256;

constexpr wchar_t kConflict[] =
    L"You cannot use the RF modem (wireless) feature and the IR dongle simultaneously.";
constexpr wchar_t kConflictTitle[] = L"RF Modem / IR Conflict";

}  // namespace

frmCOMSettings::frmCOMSettings(UserSurface& user, CKespCOMPort3& COMPort, const ComPortDialogOptions& options,
                               RFModemDialog& rf_modem_dialog)
    : Form(user, L"RS-232 Communication Settings", L"attempting to edit COM port settings",
           HelpTopic::kComSettings, options.help_context,
           {{L"COM Port", kComPortPage}, {L"SmartSwitch", kSmartSwitchPage}, {L"Extended", kExtendedPage}}),
      icboCOMPort(*this, ID_ICBO_COM_PORT, kComPortPage),
      lblBaudRate(*this, ID_LBL_BAUD_RATE, kComPortPage),
      cboBaudRate(*this, ID_CBO_BAUD_RATE, kComPortPage),
      chkUseIRDongle(*this, ID_CHK_USE_IR_DONGLE, kComPortPage, L"Using IR dongle"),
      chkUseRFModem(*this, ID_CHK_USE_RF_MODEM, kComPortPage, L"Using RF modem for wireless communications"),
      cmdRFProperties(*this, ID_CMD_RF_PROPERTIES, kComPortPage),
      lblInstrAddress(*this, ID_LBL_INSTR_ADDRESS, kComPortPage),
      txtInstrAddress(*this, ID_TXT_INSTR_ADDRESS, kComPortPage, KeyFilter::kDigits),
      chkUseRedirector(*this, ID_CHK_USE_REDIRECTOR, kComPortPage, L"Using COM port redirector software"),
      chkUseSmartSwitch(*this, ID_CHK_USE_SMART_SWITCH, kSmartSwitchPage),
      lblSmartSwitchStyle(*this, ID_LBL_SMART_SWITCH_STYLE, kSmartSwitchPage),
      icboSmartSwitchStyle(*this, ID_ICBO_SMART_SWITCH_STYLE, kSmartSwitchPage),
      cmdTestSmartSwitch(*this, ID_CMD_TEST_SMART_SWITCH, kSmartSwitchPage),
      cboParity(*this, ID_CBO_PARITY, kExtendedPage),
      cboDataBits(*this, ID_CBO_DATA_BITS, kExtendedPage),
      cboStopBits(*this, ID_CBO_STOP_BITS, kExtendedPage),
      cboMinBaudRate(*this, ID_CBO_MIN_BAUD_RATE, kExtendedPage),
      cboMaxBaudRate(*this, ID_CBO_MAX_BAUD_RATE, kExtendedPage),
      udTimeout(*this, ID_UD_TIMEOUT, kExtendedPage, kShortestTimeout, kLongestTimeout, kTimeoutStep),
      txtTimeout(*this, ID_TXT_TIMEOUT, kExtendedPage, KeyFilter::kSignedDecimal, udTimeout),
      cboControllerStyle(*this, ID_CBO_CONTROLLER_STYLE, kExtendedPage),
      chkStripCRLF(*this, ID_CHK_STRIP_CRLF, kExtendedPage),
      chkCheckNonASCII(*this, ID_CHK_CHECK_NON_ASCII, kExtendedPage),
      chkCreateLogFile(*this, ID_CHK_CREATE_LOG_FILE, kExtendedPage),
      port_(COMPort),
      options_(options),
      rf_modem_dialog_(rf_modem_dialog) {
  cmdRFProperties.Enable(false);
  lblInstrAddress.Enable(false);
  txtInstrAddress.Enable(false);
  cboControllerStyle.on_choose = [this] { OnControllerStyle(); };
  chkUseRFModem.on_click = [this] { OnUseRFModem(); };
  chkUseIRDongle.on_click = [this] { OnUseIRDongle(); };
  chkUseSmartSwitch.on_click = [this] { OnUseSmartSwitch(); };
  cmdTestSmartSwitch.on_click = [this] { port_.TestSmartSwitch(); };
  cboMinBaudRate.on_choose = [this] { OnBaudRateRange(); };
  cboMaxBaudRate.on_choose = [this] { OnBaudRateRange(); };
  cmdRFProperties.on_click = [this] { OnRFProperties(); };

  // From the back, so that the numbers of the others stay right.
  if (!options_.show_extended_page) tabSettings.Remove(2);
  if (!options_.show_smart_switch_page) tabSettings.Remove(1);
  FillPorts();
  FillBaudRates(port_.MinBaudRate(), port_.MaxBaudRate());
  chkUseIRDongle.Show(options_.show_ir_dongle);
  if (options_.show_smart_switch_page) icboSmartSwitchStyle.Fill(SmartSwitchStyleEntries());
  if (options_.show_extended_page) {
    cboMinBaudRate.Fill(BaudRateEntries(EKespBaudRate3::br150, EKespBaudRate3::br921600));
    cboMaxBaudRate.Fill(BaudRateEntries(EKespBaudRate3::br150, EKespBaudRate3::br921600));
    cboControllerStyle.Fill(ControllerStyleEntries());
    cboParity.Fill(ParityEntries());
    cboDataBits.Fill(DataBitsEntries());
    cboStopBits.Fill(StopBitsEntries());
  }
}

void frmCOMSettings::FillPorts() {
  const BusyPointer busy(user());
  std::vector<ChoiceList::Entry> ports;
  for (std::int16_t n = 1; n <= kLastPort; ++n) {
    // A port that is available exists, too. Asking is opening it, which some ports take seconds for.
    if (port_.IsPortAvailable(n)) {
      ports.push_back({L"COM" + std::to_wstring(n), n, "COMPort"});
    }
  }
  icboCOMPort.Fill(std::move(ports));
}

void frmCOMSettings::FillBaudRates(EKespBaudRate3 minimum, EKespBaudRate3 maximum) {
  cboBaudRate.Fill(BaudRateEntries(minimum, maximum));
}

void frmCOMSettings::LoadSettings() {
  if (options_.show_extended_page) LoadExtended();
  if (options_.show_smart_switch_page) LoadSmartSwitch();
  if (port_.Port() > 0) icboCOMPort.SelectValue(port_.Port());
  if (icboCOMPort.selected() == nullptr) icboCOMPort.Select(0);
  cboBaudRate.SelectValue(static_cast<std::int32_t>(port_.BaudRate()));
  if (options_.show_ir_dongle) chkUseIRDongle.SetChecked(port_.UseIRDongle());
  chkUseRedirector.SetChecked(port_.UseRedirector());
  chkUseRFModem.SetChecked(port_.UseRFModem());
  txtInstrAddress.SetText(PlainNumber(port_.InstrAddr()));
  OnUseSmartSwitch();
}

void frmCOMSettings::LoadExtended() {
  cboMinBaudRate.SelectValue(static_cast<std::int32_t>(port_.MinBaudRate()));
  cboMaxBaudRate.SelectValue(static_cast<std::int32_t>(port_.MaxBaudRate()));
  chkCheckNonASCII.SetChecked(port_.CheckNonAscii());
  chkStripCRLF.SetChecked(port_.StripCRLF());
  chkCreateLogFile.SetChecked(port_.CreateLogFile());
  txtTimeout.SetText(PlainNumber(port_.TimeOut()));
  cboControllerStyle.SelectValue(static_cast<std::int32_t>(port_.ControllerStyle()));
  SelectFraming();
}

void frmCOMSettings::SelectFraming() {
  cboParity.SelectValue(static_cast<std::int32_t>(port_.Parity()));
  cboDataBits.SelectValue(static_cast<std::int32_t>(port_.DataBits()));
  cboStopBits.SelectValue(static_cast<std::int32_t>(port_.StopBits()));
}

void frmCOMSettings::LoadSmartSwitch() {
  chkUseSmartSwitch.SetChecked(port_.UseSmartSwitch());
  icboSmartSwitchStyle.SelectValue(static_cast<std::int32_t>(port_.SmartSwitch()->Style()));
}

void frmCOMSettings::OnControllerStyle() {
  port_.SetControllerStyle(static_cast<EKespControllerStyle3>(cboControllerStyle.selected()->value));
  // It brings its own framing along.
  SelectFraming();
}

void frmCOMSettings::OnUseRFModem() {
  const bool used = chkUseRFModem.checked();
  if (used && chkUseIRDongle.checked()) {
    chkUseIRDongle.SetChecked(false);
    ShowMessage(user(), kConflict, kConflictTitle);
  }
  // The radio link runs at the modem's rate.
  bool fixed = false;
  if (used) {
    const auto rate = static_cast<std::int32_t>(EKespBaudRate3::br9600);
    cboBaudRate.SelectValue(rate);
    fixed = cboBaudRate.selected() != nullptr && cboBaudRate.selected()->value == rate;
  }
  lblBaudRate.Enable(!fixed);
  cboBaudRate.Enable(!fixed);
  cmdRFProperties.Enable(used);
  lblInstrAddress.Enable(cmdRFProperties.enabled());
  txtInstrAddress.Enable(cmdRFProperties.enabled());
}

void frmCOMSettings::OnUseIRDongle() {
  if (!chkUseIRDongle.checked() || !chkUseRFModem.checked()) return;
  chkUseRFModem.SetChecked(false);
  ShowMessage(user(), kConflict, kConflictTitle);
}

void frmCOMSettings::OnUseSmartSwitch() {
  lblSmartSwitchStyle.Enable(chkUseSmartSwitch.checked());
  icboSmartSwitchStyle.Enable(lblSmartSwitchStyle.enabled());
  cmdTestSmartSwitch.Enable(lblSmartSwitchStyle.enabled());
}

void frmCOMSettings::OnBaudRateRange() {
  // An end that is not selected counts as 0, the lowest rate.
  FillBaudRates(cboMinBaudRate.SelectedAs(EKespBaudRate3::br150),
                cboMaxBaudRate.SelectedAs(EKespBaudRate3::br150));
  // Whatever was chosen is chosen again by the user; the lowest rate there is stands for nothing chosen yet.
  cboBaudRate.SelectValue(static_cast<std::int32_t>(EKespBaudRate3::br150));
}

}  // namespace kesp
