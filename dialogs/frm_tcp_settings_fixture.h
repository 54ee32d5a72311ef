// The stage of the tests of the TCP/IP form: a transport with settings of its own, the form on it, and a
// view.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <tuple>

#include "dialogs/form_view_fake.h"
#include "dialogs/frm_tcp_settings.h"
#include "network/kesp_tcp_fixture.h"

namespace kesp {

class frmTCPSettingsFixture : public KespTCPFixture {
 protected:
  frmTCPSettingsFixture() {
    tcp_->SetIPAddress(L"192.168.0.10");
    tcp_->SetPort(10001);
    tcp_->SetTimeOutmSecs(2500);
    tcp_->SetCreateLogFile(true);
  }

  // Makes the form as the transport does and paints it for the first time.
  void Load(const TcpDialogOptions& options = {true, 0}) {
    form_ = std::make_unique<frmTCPSettings>(fakes_.user, *tcp_, options);
    form_->SetView(&view_);
    form_->FirstPaint();
  }
  void LoadType(std::int32_t type) {
    tcp_->SetIPType(static_cast<EIPType>(type));
    Load();
  }

  void OK() {
    form_->Use([this] { form_->cmdOKCancelHelp[Form::kOK].Click(); });
  }

  Boxes TakeBoxes() { return fakes_.user.TakeBoxes(); }

  Lines Octets() const {
    Lines texts;
    for (const TextBox& box : form_->txtIP) texts.push_back(box.text());
    return texts;
  }
  void TypeOctets(const Lines& texts) {
    for (std::size_t index = 0; index < texts.size(); ++index) form_->txtIP[index].Type(texts[index]);
  }

  // Type, address, port, timeout, log: what the dialog may write.
  std::tuple<EIPType, std::wstring, std::int16_t, std::int16_t, bool> Settings() const {
    return {tcp_->IPType(), tcp_->IPAddress(), tcp_->Port(), tcp_->TimeOutmSecs(), tcp_->CreateLogFile()};
  }

  FormViewFake view_;
  std::unique_ptr<frmTCPSettings> form_;
};

}  // namespace kesp
