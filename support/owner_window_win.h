// The window that a dialog or a message box of this thread belongs to.
#pragma once

#include <windows.h>

namespace kesp {

// The thread's active window; while another program is in front, the foremost of its windows that can be seen
// and used. null when it has none.
HWND OwnerWindow();

}  // namespace kesp
