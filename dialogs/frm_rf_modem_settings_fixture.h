// The stage of the tests of the radio modem's form: an open port with a modem behind it, and the form on it.
#pragma once

#include <memory>

#include "dialogs/form_view_fake.h"
#include "dialogs/frm_rf_modem_settings.h"
#include "serial/kesp_com_port_modem_fixture.h"

namespace kesp {

class frmRFModemSettingsFixture : public CKespCOMPort3ModemTest {
 protected:
  frmRFModemSettingsFixture();
  ~frmRFModemSettingsFixture() override;

  // A new form.
  void MakeForm();

  // Has the modem read, and forgets how.
  void Load();

  void OK();

  // PAN ID, channel, modem address, timeout.
  Lines Entries() const;

  Boxes TakeBoxes() { return environment_.user.TakeBoxes(); }

  FormViewFake view_;
  std::unique_ptr<frmRFModemSettings> form_;
};

}  // namespace kesp
