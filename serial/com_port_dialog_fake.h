// A settings dialog of a serial transport whose user does what the test has written down.
#pragma once

#include <functional>
#include <vector>

#include "serial/com_port_dialog.h"
#include "support/failing_call_fake.h"

namespace kesp {

class ComPortDialogFake final : public ComPortDialog {
 public:
  ComPortDialogFake();
  ~ComPortDialogFake() override;

  bool Show(CKespCOMPort3& port, const ComPortDialogOptions& options) override;

  // What the user does meanwhile; it may throw.
  std::function<void(CKespCOMPort3& port)> on_show;
  // A failing call throws std::bad_alloc instead.
  FailingCallFake faults;

  // Whether he confirms in the end.
  bool answer = true;

  // The options of every showing, in order.
  std::vector<ComPortDialogOptions> shown;
};

}  // namespace kesp
