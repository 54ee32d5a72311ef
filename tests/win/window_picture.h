// A picture of a window as it stands on the screen.
#pragma once

#include <windows.h>

#include <string>

namespace kesp {

// Writes what the screen shows where the window is, its frame included, to a PNG file; false when it cannot.
bool PictureWindow(HWND window, const std::wstring& file);

}  // namespace kesp
