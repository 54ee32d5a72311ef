// The settings dialog of a network transport, as the transport sees it.
#pragma once

#include <cstdint>

namespace kesp {

class CKespTCP;

// What the client wants to see of the dialog.
struct TcpDialogOptions {
  bool show_extended_page = false;
  std::int32_t help_context = 0;  // number of the topic that Help opens
};

class TcpDialog {
 public:
  virtual ~TcpDialog() = default;

  // Lets the user edit the settings and waits until he has done. False when he cancelled. A failure to show
  // the dialog is thrown; those inside it are shown to the user.
  virtual bool Show(CKespTCP& tcp, const TcpDialogOptions& options) = 0;
};

}  // namespace kesp
