// The stage of the tests of the radio modem's form: an open port with a modem behind it, and the form on it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "dialogs/form_view_fake.h"
#include "dialogs/frm_rf_modem_settings.h"
#include "serial/kesp_com_port_modem_fixture.h"

namespace kesp {

class frmRFModemSettingsTest : public CKespCOMPort3ModemTest {
 protected:
  using ViewLines = std::vector<std::string>;
  using Texts = std::vector<std::wstring>;

  frmRFModemSettingsTest();
  ~frmRFModemSettingsTest() override;

  // Has the modem read, and forgets how.
  void Load();

  void OK();

  // PAN ID, channel, modem address, time-out.
  Texts Boxes() const;

  const std::vector<MessageBoxRequest>& Shown() const;

  FormViewFake view_;
  std::unique_ptr<frmRFModemSettings> form_;
};

}  // namespace kesp
