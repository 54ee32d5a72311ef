// What a screen reader calls a window.
#pragma once

#include <windows.h>

namespace kesp {

// Gives a window the name that a label shows. Where the system has no service for it, nothing changes.
void SetAccessibleName(HWND window, HWND label);

}  // namespace kesp
