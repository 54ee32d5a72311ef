// Edit: the settings dialog of the selected transport.
#include "commobj/kesp_comm_obj.h"
#include "support/error_trap.h"

namespace kesp {

bool CKespCommObj::Edit(EEditCommFlags Flags, const std::wstring& HelpFile, std::int32_t HCID) {
  RequireTransport(L"[CKespCommObj - Edit()]");
  const auto edit = [&](const auto& editing) {
    return RunTrapped(environment_.user, L"attempting to edit communication settings", editing);
  };
  switch (comm_style_) {
    case ECommStyle::csRS232:
      return edit([&] { return EditSerial(Flags, HelpFile, HCID); });
    case ECommStyle::csTCPIP:
      return edit([&] { return network_->Edit(Flags, HelpFile, HCID); });
    default:
      return false;
  }
}

bool CKespCommObj::EditSerial(EEditCommFlags flags, const std::wstring& help_file,
                              std::int32_t help_context) {
  // The port is closed while the dialog is shown, whose user may do something with it meanwhile, and closed
  // again behind it. Should even the error box have failed, the next operation opens the port anew.
  serial_port_open_ = false;
  const Attempt editing = Try([&] { return serial_->Edit(flags, help_file, help_context); });
  serial_port_open_ = false;
  if (editing.error) throw *editing.error;
  return editing.succeeded;
}

}  // namespace kesp
