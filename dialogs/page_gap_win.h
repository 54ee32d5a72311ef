// Rows of a page that move up where a control is not shown.
#pragma once

#include <windows.h>

namespace kesp {

// Moves every window below the hidden one up, so that the next row takes its place.
void CloseGapOf(HWND hidden);

}  // namespace kesp
