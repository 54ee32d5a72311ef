// The TCP/IP dialog, shown in its window.
#include "dialogs/tcp_dialog_win.h"

#include "dialogs/dialog_ids.h"
#include "dialogs/form_window_win.h"
#include "dialogs/frm_tcp_settings.h"
#include "support/environment_win.h"
#include "support/owner_window_win.h"

namespace kesp {

namespace {

class TcpDialogWin final : public TcpDialog {
 public:
  bool Show(CKespTCP& tcp, const TcpDialogOptions& options) override {
    // The test of a port switch that failed leaves it busy.
    SystemEnvironment().user.SetPointer(MousePointer::kDefault);
    frmTCPSettings form(SystemEnvironment().user, tcp, options);
    FormWindow(form, {DIALOG_TCP_SETTINGS, {DIALOG_TCP_GENERAL_PAGE, DIALOG_TCP_EXTENDED_PAGE}, {}},
               OwnerWindow())
        .ShowModal();
    return !form.bCancel();
  }
};

}  // namespace

TcpDialog& SystemTcpDialog() {
  static TcpDialogWin dialog;
  return dialog;
}

}  // namespace kesp
