// The network transport's settings dialog.
#include "network/kesp_tcp.h"
#include "support/error_trap.h"

namespace kesp {

bool CKespTCP::Edit(EEditCommFlags Flags, const std::wstring& HelpFile, std::int32_t HCID) {
  return RunTrapped(environment_.user, L"attempting to edit TCP/IP settings", [&] {
    if (!HelpFile.empty()) environment_.user.SetHelpFile(HelpFile);
    if (dialog_ == nullptr) return false;
    return dialog_->Show(*this, {.show_extended_page = Includes(Flags, EEditCommFlags::ecfShowTCPExtendedTab),
                                 .help_context = HCID});
  });
}

}  // namespace kesp
