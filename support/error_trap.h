// The trap around the operations that face the user: an unexpected failure becomes an error box.
#pragma once

#include <functional>
#include <string>

#include "support/user_surface.h"

namespace kesp {

// Runs the operation and returns its result. When it throws anything, shows the error box with the action
// text ("attempting to ...") and returns false.
bool RunTrapped(UserSurface& user, const std::wstring& action, const std::function<bool()>& operation);

}  // namespace kesp
