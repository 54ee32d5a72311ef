// The stage of the tests of the radio modem's form: an open port with a modem behind it, and the form on it.
#pragma once

#include <memory>

#include "dialogs/form_view_fake.h"
#include "dialogs/frm_rf_modem_settings.h"
#include "serial/kesp_com_port_modem_fixture.h"

namespace kesp {

class frmRFModemSettingsFixture : public CKespCOMPort3ModemFixture {
 protected:
  frmRFModemSettingsFixture() { MakeForm(); }

  // A new form.
  void MakeForm() {
    form_ = std::make_unique<frmRFModemSettings>(environment_.user, port_, 4711);
    form_->SetView(&view_);
  }

  // Has the modem read, and forgets how.
  void Load() {
    AnswersQuestions();
    form_->FirstPaint();
    ASSERT_EQ(TakeBoxes(), Boxes{});
    record_.clear();
    view_.lines.clear();
  }

  void OK() {
    form_->Use([this] { form_->cmdOKCancelHelp[Form::kOK].Click(); });
  }

  // PAN ID, channel, modem address, timeout.
  Lines Entries() const {
    return {form_->txtPANID.text(), form_->txtChannel.text(), form_->txtRFModemAddress.text(),
            form_->txtTimeout.text()};
  }

  Boxes TakeBoxes() { return environment_.user.TakeBoxes(); }

  FormViewFake view_;
  std::unique_ptr<frmRFModemSettings> form_;
};

}  // namespace kesp
