// The stage of the tests of the radio modem's form: the form and its boxes.
#include "dialogs/frm_rf_modem_settings_fixture.h"

namespace kesp {

frmRFModemSettingsFixture::frmRFModemSettingsFixture() {
  MakeForm();
}

frmRFModemSettingsFixture::~frmRFModemSettingsFixture() = default;

void frmRFModemSettingsFixture::MakeForm() {
  form_ = std::make_unique<frmRFModemSettings>(environment_.user, port_, 4711);
  form_->SetView(&view_);
}

void frmRFModemSettingsFixture::Load() {
  AnswersQuestions();
  form_->FirstPaint();
  ASSERT_EQ(TakeBoxes(), Boxes{});
  record_.clear();
  view_.lines.clear();
}

void frmRFModemSettingsFixture::OK() {
  form_->Use([this] { form_->cmdOKCancelHelp[Form::kOK].Click(); });
}

Lines frmRFModemSettingsFixture::Entries() const {
  return {form_->txtPANID.text(), form_->txtChannel.text(), form_->txtRFModemAddress.text(),
          form_->txtTimeout.text()};
}

}  // namespace kesp
