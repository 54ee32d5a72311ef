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
  frmTCPSettingsFixture();
  ~frmTCPSettingsFixture() override;

  // Makes the form as the transport does and paints it for the first time.
  void Load(const TcpDialogOptions& options = {true, 0});
  void LoadType(std::int32_t type);

  void OK();

  Boxes TakeBoxes() { return fakes_.user.TakeBoxes(); }

  Lines Octets() const;
  void TypeOctets(const Lines& texts);

  // Type, address, port, timeout, log: what the dialog may write.
  std::tuple<EIPType, std::wstring, std::int16_t, std::int16_t, bool> Settings() const;

  FormViewFake view_;
  std::unique_ptr<frmTCPSettings> form_;
};

}  // namespace kesp
