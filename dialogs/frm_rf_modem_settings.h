// The form of the dialog "RF Modem Properties": what it shows, what it allows, and what it writes.
#pragma once

#include <cstdint>

#include "dialogs/form.h"
#include "serial/kesp_com_port.h"

namespace kesp {

// frmRFModemSettings edits what the radio modem on a port has stored. The modem is asked at the first paint,
// which takes a second and more, and told by OK. When it cannot be read the dialog says so and ends as if
// cancelled.
class frmRFModemSettings final : public Form {
 public:
  enum Page : int { kPropertiesPage = 0 };

  // The port outlives the form. Its number and its rate are those of the modem.
  frmRFModemSettings(UserSurface& user, CKespCOMPort3& port, std::int32_t help_context);

  TextBox txtPANID;
  TextBox txtChannel;
  TextBox txtRFModemAddress;
  TextBox txtTimeout;  // milliseconds
  Label lblSerial;
  Label lblPowerLevel;
  ProgressBar pbPowerLevel;

 private:
  void LoadSettings() override;
  bool Validate() override;
  bool WriteSettings() override;

  void ReadModem();
  bool IsValid();
  bool IsChannelValid();
  bool AskForNVRAM();

  CKespCOMPort3& port_;
  bool write_to_nvram_ = false;
};

}  // namespace kesp
