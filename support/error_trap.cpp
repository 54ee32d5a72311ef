// The trap around the operations that face the user.
#include "support/error_trap.h"

#include "support/error_box.h"
#include "support/failure.h"

namespace kesp {

bool RunTrapped(UserSurface& user, const std::wstring& action, const std::function<bool()>& operation) {
  try {
    return operation();
  } catch (...) {
    ShowError(user, action, CurrentFailure());
    return false;
  }
}

}  // namespace kesp
