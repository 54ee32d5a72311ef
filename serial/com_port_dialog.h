// The settings dialog of a serial transport, as the transport sees it.
#pragma once

#include <cstdint>

namespace kesp {

class CKespCOMPort3;

// What the client wants to see of the dialog.
struct ComPortDialogOptions {
  bool show_extended_page = false;
  bool show_smart_switch_page = false;
  bool show_ir_dongle = false;
  std::int32_t help_context = 0;  // number of the topic that Help opens
};

class ComPortDialog {
 public:
  virtual ~ComPortDialog() = default;

  // Lets the user edit the settings of the port, which is closed, and waits until he has done. False when he
  // cancelled. A failure to show the dialog is thrown; those inside it are shown to the user.
  virtual bool Show(CKespCOMPort3& port, const ComPortDialogOptions& options) = 0;
};

}  // namespace kesp
