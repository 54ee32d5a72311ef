// The RS-232 dialog and the radio modem's dialog, which opens from it.
#include "dialogs/com_port_dialog_win.h"

#include "dialogs/dialog_ids.h"
#include "dialogs/form_window_win.h"
#include "dialogs/frm_com_settings.h"
#include "dialogs/frm_rf_modem_settings.h"
#include "support/environment_win.h"
#include "support/owner_window_win.h"

namespace kesp {

namespace {

class RFModemDialogWin final : public RFModemDialog {
 public:
  void Show(CKespCOMPort3& port, std::int32_t help_context) override {
    HWND owner = OwnerWindow();
    frmRFModemSettings form(SystemEnvironment().user, port, help_context);
    FormWindow(form, {DIALOG_RF_MODEM_SETTINGS, {DIALOG_RF_PROPERTIES_PAGE}, {}}, owner).ShowModal();
  }
};

class ComPortDialogWin final : public ComPortDialog {
 public:
  bool Show(CKespCOMPort3& port, const ComPortDialogOptions& options) override {
    // Before the look for ports, during which the user may turn to another program.
    HWND owner = OwnerWindow();
    RFModemDialogWin rf_modem_dialog;
    frmCOMSettings form(SystemEnvironment().user, port, options, rf_modem_dialog);
    const FormResources resources{
        DIALOG_COM_SETTINGS,
        {DIALOG_COM_PORT_PAGE, DIALOG_SMART_SWITCH_PAGE, DIALOG_COM_EXTENDED_PAGE},
        {{ID_ICBO_COM_PORT, {{"COMPort", ICON_COM_PORT}, {"IRPort", ICON_IR_PORT}}},
         {ID_ICBO_SMART_SWITCH_STYLE, {{"6-port", ICON_6_PORT}, {"8-port", ICON_8_PORT}}}}};
    FormWindow(form, resources, owner).ShowModal();
    return !form.bCancel();
  }
};

}  // namespace

ComPortDialog& SystemComPortDialog() {
  static ComPortDialogWin dialog;
  return dialog;
}

}  // namespace kesp
