// The settings dialog whose user does what the test has written down.
#include "serial/com_port_dialog_fake.h"

#include <new>

namespace kesp {

ComPortDialogFake::ComPortDialogFake() = default;

ComPortDialogFake::~ComPortDialogFake() = default;

bool ComPortDialogFake::Show(CKespCOMPort3& port, const ComPortDialogOptions& options) {
  if (faults.IsFailing()) throw std::bad_alloc();
  shown.push_back(options);
  if (on_show) on_show(port);
  return answer;
}

}  // namespace kesp
