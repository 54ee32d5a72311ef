// The settings dialog whose user does what the test has written down.
#include "network/tcp_dialog_fake.h"

namespace kesp {

TcpDialogFake::TcpDialogFake() = default;

TcpDialogFake::~TcpDialogFake() = default;

bool TcpDialogFake::Show(CKespTCP& tcp, const TcpDialogOptions& options) {
  shown.push_back(options);
  if (on_show) on_show(tcp);
  return answer;
}

}  // namespace kesp
