// The stage of the tests of the TCP/IP form: the form, its address, and what it may write.
#include "dialogs/frm_tcp_settings_fixture.h"

namespace kesp {

frmTCPSettingsFixture::frmTCPSettingsFixture() {
  tcp_->SetIPAddress(L"192.168.0.10");
  tcp_->SetPort(10001);
  tcp_->SetTimeOutmSecs(2500);
  tcp_->SetCreateLogFile(true);
}

frmTCPSettingsFixture::~frmTCPSettingsFixture() = default;

void frmTCPSettingsFixture::Load(const TcpDialogOptions& options) {
  form_ = std::make_unique<frmTCPSettings>(fakes_.user, *tcp_, options);
  form_->SetView(&view_);
  form_->FirstPaint();
}

void frmTCPSettingsFixture::LoadType(std::int32_t type) {
  tcp_->SetIPType(static_cast<EIPType>(type));
  Load();
}

void frmTCPSettingsFixture::OK() {
  form_->Use([this] { form_->cmdOKCancelHelp[Form::kOK].Click(); });
}

Lines frmTCPSettingsFixture::Octets() const {
  Lines texts;
  for (const TextBox& box : form_->txtIP) texts.push_back(box.text());
  return texts;
}

void frmTCPSettingsFixture::TypeOctets(const Lines& texts) {
  for (std::size_t index = 0; index < texts.size(); ++index) form_->txtIP[index].Type(texts[index]);
}

std::tuple<EIPType, std::wstring, std::int16_t, std::int16_t, bool> frmTCPSettingsFixture::Settings() const {
  return {tcp_->IPType(), tcp_->IPAddress(), tcp_->Port(), tcp_->TimeOutmSecs(), tcp_->CreateLogFile()};
}

}  // namespace kesp
