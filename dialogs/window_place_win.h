// Where a dialog appears.
#pragma once

#include <windows.h>

namespace kesp {

// Moves the window to the middle of its owner, or of the screen that the mouse pointer is on when there is no
// owner to be seen, and always to where all of it is visible.
void PlaceOver(HWND window, HWND owner);

}  // namespace kesp
