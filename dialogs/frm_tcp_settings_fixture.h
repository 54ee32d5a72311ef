// The stage of the tests of the TCP/IP form: a transport with settings of its own, the form on it, and a
// view.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "dialogs/form_view_fake.h"
#include "dialogs/frm_tcp_settings.h"
#include "network/kesp_tcp_fixture.h"

namespace kesp {

class frmTCPSettingsTest : public KespTCPFixture {
 protected:
  using ViewLines = std::vector<std::string>;
  using Texts = std::vector<std::wstring>;

  frmTCPSettingsTest();
  ~frmTCPSettingsTest() override;

  // Makes the form as the transport does and paints it for the first time.
  void Load(const TcpDialogOptions& options = {true, 0});
  void LoadType(std::int32_t type);

  void OK();

  Texts Octets() const;
  void TypeOctets(const Texts& texts);

  // Type, address, port, time-out, log: what the dialog may write.
  std::tuple<EIPType, std::wstring, std::int16_t, std::int16_t, bool> Settings() const;

  FormViewFake view_;
  std::unique_ptr<frmTCPSettings> form_;
};

}  // namespace kesp
