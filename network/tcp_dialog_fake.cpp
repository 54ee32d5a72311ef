// The settings dialog whose user does what the test has written down.
#include "network/tcp_dialog_fake.h"

#include <new>

namespace kesp {

TcpDialogFake::TcpDialogFake() = default;

TcpDialogFake::~TcpDialogFake() = default;

bool TcpDialogFake::Show(CKespTCP& tcp, const TcpDialogOptions& options) {
  if (faults.IsFailing()) throw std::bad_alloc();
  shown.push_back(options);
  if (on_show) on_show(tcp);
  return answer;
}

}  // namespace kesp
