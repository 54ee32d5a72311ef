// A settings dialog of a network transport whose user does what the test has written down.
#pragma once

#include <functional>
#include <vector>

#include "network/tcp_dialog.h"
#include "support/failing_call_fake.h"

namespace kesp {

class TcpDialogFake final : public TcpDialog {
 public:
  TcpDialogFake();
  ~TcpDialogFake() override;

  bool Show(CKespTCP& tcp, const TcpDialogOptions& options) override;

  // What the user does meanwhile; it may throw.
  std::function<void(CKespTCP& tcp)> on_show;
  // A failing call throws std::bad_alloc instead.
  FailingCallFake faults;

  // Whether he confirms in the end.
  bool answer = true;

  // The options of every showing, in order.
  std::vector<TcpDialogOptions> shown;
};

}  // namespace kesp
