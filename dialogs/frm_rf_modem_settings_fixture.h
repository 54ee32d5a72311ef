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

  frmRFModemSettingsTest() {
    form_ = std::make_unique<frmRFModemSettings>(environment_.user, port_, 4711);
    form_->SetView(&view_);
  }

  // Has the modem read, and forgets how.
  void Load() {
    AnswersQuestions();
    form_->FirstPaint();
    ASSERT_TRUE(environment_.user.boxes().empty());
    record_.clear();
    view_.lines.clear();
  }

  void OK() {
    form_->Use([this] { form_->cmdOKCancelHelp[Form::kOK].Click(); });
  }

  // PAN ID, channel, modem address, time-out.
  Texts Boxes() const {
    return {form_->txtPANID.text(), form_->txtChannel.text(), form_->txtRFModemAddress.text(),
            form_->txtTimeout.text()};
  }

  const std::vector<MessageBoxRequest>& Shown() const { return environment_.user.boxes(); }

  FormViewFake view_;
  std::unique_ptr<frmRFModemSettings> form_;
};

}  // namespace kesp
