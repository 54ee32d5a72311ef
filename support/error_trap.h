// The trap around the operations that face the user: an unexpected failure becomes an error box.
#pragma once

#include "support/error_box.h"
#include "support/failure.h"
#include "support/user_surface.h"

namespace kesp {

// Runs the operation and returns its result. When it throws anything, shows the error box with the action
// text ("attempting to ...") and returns false. Nothing that could fail comes before the operation.
template <typename Operation>
bool RunTrapped(UserSurface& user, const wchar_t* action, const Operation& operation) {
  try {
    return operation();
  } catch (...) {
    ShowError(user, action, CurrentFailure());
    return false;
  }
}

}  // namespace kesp
