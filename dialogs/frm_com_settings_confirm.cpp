// What the RS-232 dialog accepts and what it writes: on OK, and when the radio modem's properties are opened.
#include "dialogs/editing.h"
#include "dialogs/frm_com_settings.h"
#include "support/error_trap.h"

namespace kesp {

namespace {

constexpr std::int32_t kHighestAddress = 65535;

constexpr wchar_t kInvalidBaudRate[] = L"Invalid Baud Rate";
constexpr wchar_t kInvalidPort[] = L"Invalid COM Port";
constexpr wchar_t kSelectPort[] = L"Select a valid COM port to use.";
constexpr wchar_t kSelectRate[] = L"Select the baud rate.";
constexpr wchar_t kInvalidAddress[] = L"Invalid Instrument Address";

}  // namespace

bool frmCOMSettings::Validate() {
  return RunTrapped(user(), L"attempting to validate communication settings", [this] { return IsValid(); });
}

bool frmCOMSettings::IsValid() {
  if (options_.show_extended_page &&
      cboMinBaudRate.SelectedAs(EKespBaudRate3::brNone) > cboMaxBaudRate.SelectedAs(EKespBaudRate3::brNone)) {
    return Refuse(cboMinBaudRate, kInvalidBaudRate,
                  L"Cannot set minimum baud rate higher than maximum baud rate setting.");
  }
  if (icboCOMPort.selected() == nullptr) return Refuse(icboCOMPort, kInvalidPort, kSelectPort);
  if (cboBaudRate.selected() == nullptr) return Refuse(cboBaudRate, kInvalidBaudRate, kSelectRate);
  if (!chkUseRFModem.checked()) return true;
  if (txtInstrAddress.text().empty()) {
    return Refuse(txtInstrAddress, kInvalidAddress, L"Enter the instrument address.");
  }
  if (const double address = txtInstrAddress.Value(); address < 1 || address > kHighestAddress) {
    return Refuse(txtInstrAddress, kInvalidAddress,
                  L"The instrument address entered is invalid. Enter an address between 1 and " +
                      PlainNumber(kHighestAddress) + L".");
  }
  return true;
}

bool frmCOMSettings::WriteSettings() {
  return RunTrapped(user(), L"attempting to gather communication settings", [this] {
    if (options_.show_extended_page) WriteExtended();
    if (options_.show_smart_switch_page) WriteSmartSwitch();
    WriteComPort();
    return true;
  });
}

// A list in which nothing is selected, because the transport's value is not in it, changes nothing.
void frmCOMSettings::WriteExtended() {
  port_.SetMinBaudRate(cboMinBaudRate.SelectedAs(port_.MinBaudRate()));
  port_.SetMaxBaudRate(cboMaxBaudRate.SelectedAs(port_.MaxBaudRate()));
  port_.SetCheckNonAscii(chkCheckNonASCII.checked());
  port_.SetStripCRLF(chkStripCRLF.checked());
  port_.SetCreateLogFile(chkCreateLogFile.checked());
  port_.SetTimeOut(ToInteger32(txtTimeout.Value()));
  // It brings its own framing along, which the three after it then overwrite.
  if (cboControllerStyle.selected() != nullptr) {
    port_.SetControllerStyle(cboControllerStyle.SelectedAs(port_.ControllerStyle()));
  }
  port_.SetParity(cboParity.SelectedAs(port_.Parity()));
  port_.SetDataBits(cboDataBits.SelectedAs(port_.DataBits()));
  port_.SetStopBits(cboStopBits.SelectedAs(port_.StopBits()));
}

void frmCOMSettings::WriteSmartSwitch() {
  CKespSmartSwitch3& smart_switch = *port_.SmartSwitch();
  port_.SetUseSmartSwitch(chkUseSmartSwitch.checked());
  smart_switch.SetStyle(icboSmartSwitchStyle.SelectedAs(smart_switch.Style()));
}

void frmCOMSettings::WriteComPort() {
  port_.SetPort(icboCOMPort.SelectedAs(port_.Port()));
  port_.SetBaudRate(cboBaudRate.SelectedAs(port_.BaudRate()));
  if (options_.show_ir_dongle) port_.SetUseIRDongle(chkUseIRDongle.checked());
  port_.SetUseRedirector(chkUseRedirector.checked());
  port_.SetUseRFModem(chkUseRFModem.checked());
  port_.SetInstrAddr(ToInteger16(txtInstrAddress.Value()));
}

void frmCOMSettings::OnRFProperties() {
  RunTrapped(user(), L"attempting to display the RF modem properties", [this] {
    ShowRFProperties();
    return true;
  });
}

void frmCOMSettings::ShowRFProperties() {
  const ChoiceList::Entry* port = icboCOMPort.selected();
  if (port == nullptr) {
    ShowMessage(user(), kSelectPort, kInvalidPort);
    return;
  }
  const ChoiceList::Entry* selected_rate = cboBaudRate.selected();
  if (selected_rate == nullptr) {
    // The transport would refuse it when everything before it has been written.
    ShowMessage(user(), kSelectRate, kInvalidBaudRate);
    return;
  }
  const auto rate = static_cast<EKespBaudRate3>(selected_rate->value);
  MessageBoxRequest request;
  request.text = L"Make sure the RF modem is connected to " + port->text + L" and set to operate at " +
                 selected_rate->text + L" baud.";
  if (rate != EKespBaudRate3::br9600) {
    request.text += L"\r\rNote: The factory default baud rate for the RF modem is 9600.";
  }
  request.text += L" Click OK to continue or click Cancel to abort.";
  request.title = L"Connect RF Modem";
  request.style = kOkCancelButtons | kInformationIcon;
  // Neither when the box could not be shown.
  if (user().ShowMessageBox(request) != kOkAnswer) return;

  port_.SetPort(static_cast<std::int16_t>(port->value));
  port_.SetMaxBaudRate(EKespBaudRate3::br115200);
  port_.SetMinBaudRate(EKespBaudRate3::br1200);
  port_.SetBaudRate(rate);
  port_.SetUseRFModem(true);
  rf_modem_dialog_.Show(port_, port_.RFModemPropHCID());
}

}  // namespace kesp
