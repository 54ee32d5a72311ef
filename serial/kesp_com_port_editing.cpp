// The serial transport's settings dialog, around which the port is closed.
#include "serial/kesp_com_port.h"
#include "support/attempt.h"
#include "support/error_trap.h"

namespace kesp {

bool CKespCOMPort3::Edit(EEditCommFlags Flags, const std::wstring& HelpFile, std::int32_t HCID) {
  const auto trapped = [this](const auto& operation) {
    return RunTrapped(environment_.user, L"attempting to edit COM port settings", operation);
  };
  const auto edit = [&] {
    ClosePort();
    if (!HelpFile.empty()) environment_.user.SetHelpFile(HelpFile);
    if (dialog_ == nullptr) return false;
    return dialog_->Show(
        *this, {.show_extended_page = Includes(Flags, EEditCommFlags::ecfShowRS232ExtendedTab),
                .show_smart_switch_page = Includes(Flags, EEditCommFlags::ecfShowRS232SmartSwitchTab),
                .show_ir_dongle = Includes(Flags, EEditCommFlags::ecfShowRS232IRDongle),
                .help_context = HCID});
  };
  // Even the error box may fail.
  const Attempt editing = Try([&] { return trapped(edit); });
  // Reading a radio modem's settings leaves the port open.
  trapped([this] { return ClosePort(), true; });
  if (editing.error) throw Failure(*editing.error);
  return editing.succeeded;
}

}  // namespace kesp
