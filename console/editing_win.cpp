// The call that shows a dialog.
#include "console/editing_win.h"

#include "console/com_calls_win.h"

namespace kesp::console {
namespace {

constexpr int kAllPages =
    ecfShowRS232ExtendedTab | ecfShowRS232SmartSwitchTab | ecfShowRS232IRDongle | ecfShowTCPExtendedTab;

}  // namespace

bool EditSettings(_CKespCommObj* comm) {
  VARIANT_BOOL confirmed = VARIANT_FALSE;
  Check(comm->Edit(static_cast<EEditCommFlags>(kAllPages), nullptr, 0, &confirmed));
  return confirmed != VARIANT_FALSE;
}

}  // namespace kesp::console
