// The form of the dialog "RS-232 Communication Settings": what it shows, what it allows, and what it writes.
#pragma once

#include "dialogs/form.h"
#include "dialogs/rf_modem_dialog.h"
#include "serial/com_port_dialog.h"
#include "serial/kesp_com_port.h"

namespace kesp {

// frmCOMSettings edits the settings of one serial transport. They are read at the first paint and written by
// OK. At once, whatever ends the dialog, are written: the controller style when one is chosen, and the port,
// its range of rates, its rate and the use of a radio modem when that modem's properties are opened. Making
// one looks for the ports of the machine, which takes its time; the transport's own port must be closed, or
// it is not among them.
class frmCOMSettings final : public Form {
 public:
  enum Page : int { kComPortPage = 0, kSmartSwitchPage = 1, kExtendedPage = 2 };

  // The port and the other dialog outlive the form.
  frmCOMSettings(UserSurface& user, CKespCOMPort3& COMPort, const ComPortDialogOptions& options,
                 RFModemDialog& rf_modem_dialog);

  // COM Port
  ChoiceList icboCOMPort;
  Label lblBaudRate;
  ChoiceList cboBaudRate;
  CheckBox chkUseIRDongle;
  CheckBox chkUseRFModem;
  Button cmdRFProperties;
  Label lblInstrAddress;
  TextBox txtInstrAddress;
  CheckBox chkUseRedirector;

  // SmartSwitch
  CheckBox chkUseSmartSwitch;
  Label lblSmartSwitchStyle;
  ChoiceList icboSmartSwitchStyle;
  Button cmdTestSmartSwitch;

  // Extended
  ChoiceList cboParity;
  ChoiceList cboDataBits;
  ChoiceList cboStopBits;
  ChoiceList cboMinBaudRate;
  ChoiceList cboMaxBaudRate;
  UpDown udTimeout;
  TextBox txtTimeout;
  ChoiceList cboControllerStyle;
  CheckBox chkStripCRLF;
  CheckBox chkCheckNonASCII;
  CheckBox chkCreateLogFile;

 private:
  void LoadSettings() override;
  bool Validate() override;
  bool WriteSettings() override;

  void LoadExtended();
  void LoadSmartSwitch();
  void SelectFraming();
  void FillPorts();
  void FillBaudRates(EKespBaudRate3 minimum, EKespBaudRate3 maximum);

  void OnControllerStyle();
  void OnUseRFModem();
  void OnUseIRDongle();
  void OnUseSmartSwitch();
  void OnBaudRateRange();
  void OnRFProperties();
  void ShowRFProperties();

  bool IsValid();
  void WriteExtended();
  void WriteSmartSwitch();
  void WriteComPort();

  CKespCOMPort3& port_;
  const ComPortDialogOptions options_;
  RFModemDialog& rf_modem_dialog_;
};

}  // namespace kesp
