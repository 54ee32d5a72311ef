// The stage of the tests of the radio modem's form: the form and its boxes.
#include "dialogs/frm_rf_modem_settings_fixture.h"

namespace kesp {

frmRFModemSettingsTest::frmRFModemSettingsTest() {
  form_ = std::make_unique<frmRFModemSettings>(environment_.user, port_, 4711);
  form_->SetView(&view_);
}

frmRFModemSettingsTest::~frmRFModemSettingsTest() = default;

void frmRFModemSettingsTest::Load() {
  AnswersQuestions();
  form_->FirstPaint();
  ASSERT_TRUE(environment_.user.boxes().empty());
  record_.clear();
  view_.lines.clear();
}

void frmRFModemSettingsTest::OK() {
  form_->Use([this] { form_->cmdOKCancelHelp[Form::kOK].Click(); });
}

frmRFModemSettingsTest::Texts frmRFModemSettingsTest::Boxes() const {
  return {form_->txtPANID.text(), form_->txtChannel.text(), form_->txtRFModemAddress.text(),
          form_->txtTimeout.text()};
}

const std::vector<MessageBoxRequest>& frmRFModemSettingsTest::Shown() const {
  return environment_.user.boxes();
}

}  // namespace kesp
